// Answers every command with its own number.
#include "sdk/sdk.h"

#if defined(_WIN32)
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" EXPORTED vireon::sdk::PF_Err EntryPointFunc(std::int32_t cmd,
                                                       vireon::sdk::PF_InData* inData,
                                                       vireon::sdk::PF_OutData* outData,
                                                       vireon::sdk::PF_ParamDef** /*params*/,
                                                       vireon::sdk::PF_EffectWorld* /*output*/,
                                                       void* /*extra*/) {
    inData->utils->ansi.strcpy(outData->return_msg, "tiny");
    return cmd;
}
