// Distinguishes a picture of the curve from a blank one: vivid-colors FILE
// Prints the number of different vivid colours in the picture. Widgets are almost grey and have none.

#include <QImage>
#include <QSet>
#include <QTextStream>

#include <algorithm>

int main(int argc, char *argv[])
{
    const QImage picture(argc == 2 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (picture.isNull()) {
        QTextStream(stderr) << "vivid-colors: cannot read the picture\n";
        return 1;
    }
    QSet<QRgb> vivid;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            const auto range = std::minmax({qRed(pixel), qGreen(pixel), qBlue(pixel)});
            if (range.second - range.first > 128)
                vivid.insert(pixel);
        }
    }
    QTextStream(stdout) << vivid.size() << '\n';
    return 0;
}
