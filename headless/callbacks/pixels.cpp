#include <algorithm>
#include <cmath>
#include <cstring>

#include "headless/callbacks/dispatch.h"
#include "headless/callbacks/tables.h"

namespace vireon::headless {
namespace {

/// The pixels that a record describes, checked against the world that it names.
struct View {
    std::uint8_t* data = nullptr;
    std::ptrdiff_t rowBytes = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    Depth depth = Depth::k8;
    std::int32_t pixelFormat = 0;

    std::uint8_t* at(std::int32_t x, std::int32_t y) const {
        return data + y * rowBytes + static_cast<std::ptrdiff_t>(x) * BytesPerPixel(depth);
    }
    sdk::PF_LRect bounds() const { return {0, 0, width, height}; }
};

/// Nothing, and a violation, when the record does not lie within the memory of its world.
std::optional<View> ViewOf(HostState& host, const sdk::PF_EffectWorld* record, const char* what) {
    const auto identity = record == nullptr ? std::nullopt : IdentifyWorld(*record);
    if (!identity || record->data == nullptr) {
        host.violate(std::string(what) + ": the record is of no world of the host's");
        return std::nullopt;
    }
    View view{static_cast<std::uint8_t*>(record->data),
              record->rowbytes,
              record->width,
              record->height,
              identity->depth,
              identity->pixelFormat};
    if (view.width < 1 || view.height < 1) {
        host.violate(std::string(what) + ": the world's record has no size");
        return std::nullopt;
    }
    const auto address = [](const std::uint8_t* byte) {
        return reinterpret_cast<std::uintptr_t>(byte);
    };
    const auto first = static_cast<std::ptrdiff_t>(address(view.data) - address(identity->begin));
    const std::ptrdiff_t last = first + view.rowBytes * (view.height - 1);
    const auto rowEnd = static_cast<std::ptrdiff_t>(view.width) * BytesPerPixel(view.depth);
    const auto size = identity->end - identity->begin;
    if (std::min(first, last) < 0 || std::max(first, last) + rowEnd > size) {
        host.violate(std::string(what) + ": the world's record reaches outside its pixels");
        return std::nullopt;
    }
    return view;
}

std::optional<View> WritableViewOf(HostState& host, const sdk::PF_EffectWorld* record,
                                   const char* what) {
    auto view = ViewOf(host, record, what);
    if (view && (record->world_flags & sdk::PF_WorldFlag_WRITEABLE) == 0) {
        host.violate(std::string(what) + ": the world may only be read");
        return std::nullopt;
    }
    return view;
}

/// Source place of the middle of a destination pixel when `from` pixels are laid over `to`.
std::int32_t Nearest(std::int32_t offset, std::int32_t from, std::int32_t to) {
    return static_cast<std::int32_t>(std::floor((static_cast<double>(offset) + 0.5) * from / to));
}

/// Copies one pixel after the other, which also serves rectangles of different size.
void CopyStretched(const View& source, const sdk::PF_LRect& from, const View& target,
                   const sdk::PF_LRect& to) {
    const sdk::PF_LRect clip = Intersection(to, target.bounds());
    const auto pixelBytes = static_cast<std::size_t>(BytesPerPixel(target.depth));
    for (std::int32_t y = clip.top; y < clip.bottom; ++y) {
        const std::int32_t sourceY =
            from.top + Nearest(y - to.top, from.bottom - from.top, to.bottom - to.top);
        if (sourceY < 0 || sourceY >= source.height) {
            continue;
        }
        for (std::int32_t x = clip.left; x < clip.right; ++x) {
            const std::int32_t sourceX =
                from.left + Nearest(x - to.left, from.right - from.left, to.right - to.left);
            if (sourceX >= 0 && sourceX < source.width) {
                std::memcpy(target.at(x, y), source.at(sourceX, sourceY), pixelBytes);
            }
        }
    }
}

/// Copies rows between rectangles of one size.
void CopyRows(const View& source, const sdk::PF_LRect& from, const View& target,
              const sdk::PF_LRect& to) {
    const std::int32_t shiftX = to.left - from.left;
    const std::int32_t shiftY = to.top - from.top;
    sdk::PF_LRect readable = Intersection(from, source.bounds());
    readable.left += shiftX;
    readable.right += shiftX;
    readable.top += shiftY;
    readable.bottom += shiftY;
    const sdk::PF_LRect clip = Intersection(readable, target.bounds());
    if (IsEmpty(clip)) {
        return;
    }
    const auto rowBytes = static_cast<std::size_t>(clip.right - clip.left) *
                          static_cast<std::size_t>(BytesPerPixel(target.depth));
    for (std::int32_t y = clip.top; y < clip.bottom; ++y) {
        std::memmove(target.at(clip.left, y), source.at(clip.left - shiftX, y - shiftY), rowBytes);
    }
}

sdk::PF_Err Copy(sdk::PF_ProgPtr effectRef, sdk::PF_EffectWorld* source, sdk::PF_EffectWorld* dst,
                 sdk::PF_LRect* sourceRect, sdk::PF_LRect* dstRect) {
    return Serve(Slot::kCopy, effectRef, [&](HostState& host) -> sdk::PF_Err {
        const auto from = ViewOf(host, source, "copy, source");
        const auto to = WritableViewOf(host, dst, "copy, destination");
        if (!from || !to) {
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (from->pixelFormat != to->pixelFormat) {
            host.violate("copy between worlds of different pixel formats");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const sdk::PF_LRect fromRect = sourceRect != nullptr ? *sourceRect : from->bounds();
        const sdk::PF_LRect toRect = dstRect != nullptr ? *dstRect : to->bounds();
        if (IsEmpty(fromRect) || IsEmpty(toRect)) {
            return 0;
        }
        const bool sameSize = fromRect.right - fromRect.left == toRect.right - toRect.left &&
                              fromRect.bottom - fromRect.top == toRect.bottom - toRect.top;
        if (sameSize) {
            CopyRows(*from, fromRect, *to, toRect);
        } else {
            CopyStretched(*from, fromRect, *to, toRect);
        }
        return 0;
    });
}

/// Fills a rectangle with a colour, or with zeros at any depth for a null colour.
template <Slot slot, Depth depth, typename Pixel>
sdk::PF_Err Fill(sdk::PF_ProgPtr effectRef, const Pixel* colour, const sdk::PF_LRect* dstRect,
                 sdk::PF_EffectWorld* world) {
    return Serve(slot, effectRef, [&](HostState& host) -> sdk::PF_Err {
        const auto view = WritableViewOf(host, world, SlotName(slot));
        if (!view) {
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        if (colour != nullptr && view->depth != depth) {
            host.violate(std::string(SlotName(slot)) + " with a colour on a world of " +
                         std::to_string(BitsPerChannel(view->depth)) + " bits");
            return sdk::PF_Err_BAD_CALLBACK_PARAM;
        }
        const sdk::PF_LRect rect =
            dstRect != nullptr ? Intersection(*dstRect, view->bounds()) : view->bounds();
        if (IsEmpty(rect)) {
            return 0;
        }
        const std::int32_t width = rect.right - rect.left;
        for (std::int32_t y = rect.top; y < rect.bottom; ++y) {
            std::uint8_t* const row = view->at(rect.left, y);
            if (colour == nullptr) {
                std::memset(row, 0,
                            static_cast<std::size_t>(width) *
                                static_cast<std::size_t>(BytesPerPixel(view->depth)));
            } else {
                for (std::int32_t x = 0; x < width; ++x) {
                    std::memcpy(view->at(rect.left + x, y), colour, sizeof *colour);
                }
            }
        }
        return 0;
    });
}

}  // namespace

void FillPixels(sdk::PF_UtilCallbacks& table) {
    table.copy = Copy;
    table.fill = Fill<Slot::kFill, Depth::k8, sdk::PF_Pixel>;
    table.fill16 = Fill<Slot::kFill16, Depth::k16, sdk::PF_Pixel16>;
}

}  // namespace vireon::headless
