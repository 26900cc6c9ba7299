#pragma once

/// Blending of colours, channel by channel or through hue, lightness and saturation (HLS).
///
/// A packed colour is an unsigned int 0x00RRGGBB. The functions read its low 24 bits. Computed colours have zeros in
/// bits 24 to 31; colours that are returned unchanged keep these bits. An HLS triple is three doubles of 0 to 1. Hue is
/// a fraction of a full turn: red 0, green 1/3, blue 2/3.
///
/// A NaN fraction or weight gives channels of 0. A channel value outside 0 to 255 is reduced to its low 8 bits, not
/// clamped. ColorScaleHSL and ColorScaleHSL3 keep their intermediate triples in static storage: not re-entrant.

/// Returns the blend of `c0` and `c1` at fraction `t`, channel by channel, with halves rounded up. Returns `c0` with
/// all 32 bits for a `t` of 0 or less, and `c1` for a `t` of 1 or more.
unsigned int ColorScaleRGB(unsigned int c0, unsigned int c1, float t);

/// Returns the blend of `c0` and `c1` at fraction `t` through HLS, with channels truncated. Hue is interpolated along
/// the number line, not the shorter way round the colour circle: blue (2/3) to red (0) passes cyan, green and yellow.
/// Returns `c0` or `c1` as ColorScaleRGB does.
unsigned int ColorScaleHSL(unsigned int c0, unsigned int c1, float t);

/// Returns the mean of three colours with weights `w0`, `w1` and `w2`, channel by channel, with halves rounded up.
/// Clamps the weights to 0 to 1. Returns `c0` with all 32 bits if all weights are 0.
unsigned int ColorScaleRGB3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2);

/// Returns the mean of three colours through HLS, with channels truncated. Hue is a weighted mean along the number
/// line. Treats the weights as ColorScaleRGB3 does.
unsigned int ColorScaleHSL3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2);

/// Converts the packed colour `c` to hue `h` in [0, 1), lightness `l` and saturation `s` in [0, 1] (HLS double
/// hexcone). A grey has hue and saturation 0.
void RGBtoHLS(unsigned int c, double &h, double &l, double &s);

/// Returns the packed colour of hue `h`, lightness `l` and saturation `s`. Truncates the channels, so a colour may be
/// one unit lower in a channel after RGBtoHLS and HLStoRGB (0xC86432 becomes 0xC86431). Wraps a hue of -2/3 to 5/3
/// once.
unsigned int HLStoRGB(double h, double l, double s);
