#pragma once

#include "image/float_image.h"
#include "simd/frame_kernels.h"

namespace vireon {

struct GlowSettings;
namespace simd {
struct KernelTable;
}

/// Small passes over whole float images, in place, pixel by pixel in order. Colours are straight
/// unless a pass says otherwise, values are unlimited, and none of the passes fails or keeps state.
/// What is not finite stays at its own place. The forms by kernels give the same bits.

/// Bends light above white back below it. With m the largest colour of the whole image (at least
/// 0), e = m - 1 limited to [0, 1] and knee = 1 - e, every colour v above the knee, x = (v - knee)
/// / e, becomes ((1 - 2^(-2x)) c + x (1 - c)) e + knee where x > 0.5; c is `overbrightClamp` as a
/// fraction. Idle when `preventOverbrights` is off, c is 0, or m is at most 1. Alpha is not looked
/// at.
void OverbrightSoftClip(const FloatImage& image, const GlowSettings& settings);

/// Multiplies everything by `factor` unless it is 1; makes alpha 1.0 when `forceOpaque` is set, or
/// takes it from `source` when alpha is no output channel; zeroes the colours that are none.
/// \param source  same size as `glow`; may be the same image
void ChannelMaskPass(const FloatImage& glow, const FloatImage& source, const GlowSettings& settings,
                     float factor, bool forceOpaque);

/// Moves intensity into coverage: with m the largest colour, alpha becomes alpha x m and the
/// colours are divided by m, or become 0 when m is 0.
void IntensityToAlpha(const FloatImage& image);

/// All that happens to the glow before it is composited: `ChannelMaskPass` with a factor of 1,
/// `OverbrightSoftClip`, `ClampAlpha`, and `IntensityToAlpha` when alpha is an output channel.
/// \param source  same size as `glow`, and another image
void FinishGlow(const FloatImage& glow, const FloatImage& source, const GlowSettings& settings,
                bool forceOpaque);
void FinishGlow(const simd::KernelTable& kernels, const FloatImage& glow, const FloatImage& source,
                const GlowSettings& settings, bool forceOpaque);

/// What `FinishGlow` does to a row, but for the soft clip.
simd::GlowRowSettings RowPasses(const GlowSettings& settings, bool forceOpaque);

/// Adds the soft clip of a glow whose largest colour is known, as far as it is above 1. One of 2 or
/// more stands for all of these.
void AddSoftClip(simd::GlowRowSettings& row, const GlowSettings& settings, float largest);

/// Multiplies red, green and blue by `factor`.
void ScaleColour(const FloatImage& image, float factor);
void ScaleColour(const simd::KernelTable& kernels, const FloatImage& image, float factor);

/// Limits red, green and blue to [0, 1].
void ClampColour(const FloatImage& image);
void ClampColour(const simd::KernelTable& kernels, const FloatImage& image);

/// Limits alpha to [0, 1].
void ClampAlpha(const FloatImage& image);

/// Whether no pixel has an alpha below 1.0; stops at the first that has. An empty image is opaque.
bool IsOpaque(const FloatImage& image);
bool IsOpaque(const simd::KernelTable& kernels, const FloatImage& image);

/// Sets alpha to 1.0.
void FillAlpha(const FloatImage& image);

/// Sets alpha to 0.
void ClearAlpha(const FloatImage& image);

/// Multiplies red, green and blue by alpha.
void Premultiply(const FloatImage& image);
void Premultiply(const simd::KernelTable& kernels, const FloatImage& image);

/// Divides red, green and blue by alpha where alpha is above 0; other pixels stay as they are.
void Unpremultiply(const FloatImage& image);
void Unpremultiply(const simd::KernelTable& kernels, const FloatImage& image);

}  // namespace vireon
