#ifdef __SANITIZE_ADDRESS__
/// Some tests make the effect ask for more memory than there is; it is to be refused, not stopped.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
#endif
