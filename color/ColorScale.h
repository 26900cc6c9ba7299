#pragma once

/// Blending of colours, channel by channel or through hue, lightness and saturation (HLS).
///
/// A packed colour is an unsigned int 0x00RRGGBB. The functions read its low 24 bits; every colour that they compute
/// has zeros in bits 24 to 31, and a colour that they hand through unchanged keeps what it held there.
/// An HLS triple is three doubles of 0 to 1; hue is a fraction of a full turn: red 0, green 1/3, blue 2/3.
///
/// No argument is an error. A NaN fraction or weight passes the comparisons and ends as a channel of 0; a channel
/// value outside 0 to 255 is cut to its low 8 bits and not clamped.
///
/// ColorScaleHSL and ColorScaleHSL3 keep their intermediate triples in static storage: one thread at a time.

/// The colour at fraction `t` of the way from `c0` to `c1`, channel by channel, halves rounded up.
/// `t` of 0 or less gives `c0` and of 1 or more `c1`, with all 32 bits.
unsigned int ColorScaleRGB(unsigned int c0, unsigned int c1, float t);

/// The colour at fraction `t` of the way from `c0` to `c1` through HLS, channels truncated.
/// Hue runs straight along the number line, never the short way round the colour circle: blue (2/3) to red (0) passes
/// cyan, green and yellow, the rainbow of the curve's palette.
/// `t` of 0 or less gives `c0` and of 1 or more `c1`, with all 32 bits.
unsigned int ColorScaleHSL(unsigned int c0, unsigned int c1, float t);

/// The mean of three colours, channel by channel, weighted by `w0`, `w1` and `w2`, halves rounded up.
/// Weights are first brought into 0 to 1. If all are 0 the result is `c0` with all 32 bits.
unsigned int ColorScaleRGB3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2);

/// The mean of three colours through HLS, weighted by `w0`, `w1` and `w2`, channels truncated.
/// Hue is a plain weighted mean and not a circular one. Weights as in ColorScaleRGB3.
unsigned int ColorScaleHSL3(unsigned int c0, unsigned int c1, unsigned int c2, float w0, float w1, float w2);

/// Converts the packed colour `c` to hue `h` in [0, 1), lightness `l` and saturation `s` in [0, 1].
/// A grey has hue and saturation 0. The method is the usual one of the HLS double hexcone.
void RGBtoHLS(unsigned int c, double &h, double &l, double &s);

/// Converts hue `h`, lightness `l` and saturation `s` to a packed colour, the inverse of RGBtoHLS but for truncation:
/// a colour may come back one unit lower in a channel (0xC86432 returns as 0xC86431).
/// A hue up to 2/3 of a turn outside 0 to 1 is wrapped once.
unsigned int HLStoRGB(double h, double l, double s);
