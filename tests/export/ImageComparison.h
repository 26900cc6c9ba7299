#pragma once

#include <QImage>

#include <algorithm>
#include <cmath>
#include <vector>

/// A comparison of two images of one size.
struct ImageComparison
{
    double correlation;   ///< of the means of squares of 6 by 6 pixels, over all channels
    double differingPart; ///< part of the pixels whose square of 5 by 5 differs by more than a quarter in a channel

    bool isAlike() const { return correlation >= 0.95 && differingPart <= 0.02; }
};

/// The sums of one channel over the pixels above and to the left of every pixel.
class ChannelSums
{
public:
    ChannelSums(const QImage &image, int channel) : stride(image.width() + 1)
    {
        sums.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(image.height() + 1));
        for (int y = 0; y < image.height(); ++y) {
            const auto *const line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const int value = static_cast<int>(line[x] >> (8U * static_cast<unsigned>(channel)) & 255U);
                at(x + 1, y + 1) = at(x + 1, y) + at(x, y + 1) - at(x, y) + value;
            }
        }
    }

    /// Returns the mean of the square of `size` by `size` pixels with its upper left one at `x`, `y`.
    double mean(int x, int y, int size)
    {
        return double(at(x + size, y + size) - at(x, y + size) - at(x + size, y) + at(x, y)) / (size * size);
    }

private:
    int &at(int x, int y)
    {
        return sums[static_cast<std::size_t>(y) * static_cast<std::size_t>(stride) + static_cast<std::size_t>(x)];
    }

    int stride;
    std::vector<int> sums;
};

inline ImageComparison compareImages(const QImage &first, const QImage &second)
{
    const QImage a = first.convertToFormat(QImage::Format_RGB32);
    const QImage b = second.convertToFormat(QImage::Format_RGB32);
    if (a.isNull() || a.size() != b.size())
        return {0.0, 1.0};
    double n = 0, sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
    std::vector<bool> differs(static_cast<std::size_t>(a.width() * a.height()));
    for (int channel = 0; channel < 3; ++channel) {
        ChannelSums sumsA(a, channel);
        ChannelSums sumsB(b, channel);
        for (int y = 0; y + 6 <= a.height(); y += 6) {
            for (int x = 0; x + 6 <= a.width(); x += 6) {
                const double meanA = sumsA.mean(x, y, 6);
                const double meanB = sumsB.mean(x, y, 6);
                n += 1;
                sumA += meanA;
                sumB += meanB;
                sumAA += meanA * meanA;
                sumBB += meanB * meanB;
                sumAB += meanA * meanB;
            }
        }
        for (int y = 0; y + 5 <= a.height(); ++y) {
            for (int x = 0; x + 5 <= a.width(); ++x) {
                if (std::abs(sumsA.mean(x, y, 5) - sumsB.mean(x, y, 5)) > 255.0 / 4)
                    differs[static_cast<std::size_t>(y) * static_cast<std::size_t>(a.width()) +
                            static_cast<std::size_t>(x)] = true;
            }
        }
    }
    return {(n * sumAB - sumA * sumB) / std::sqrt((n * sumAA - sumA * sumA) * (n * sumBB - sumB * sumB)),
            double(std::count(differs.begin(), differs.end(), true)) / double(differs.size())};
}
