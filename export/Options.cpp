#include "export/Options.h"

#include "engine/RowText.h"
#include "export/ExportError.h"
#include "export/LineImage.h"
#include "view/Camera.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cmath>

namespace {

constexpr int maxFrames = 99999;
constexpr int maxPixels = 16384;
constexpr double maxMillimetres = 5000.0;

/// Shorter side of A0 to A6 in millimetres, by size, followed by the longer side of A0. The longer side of a size is
/// the shorter side of the next larger one.
constexpr std::array<int, 8> sidesOfPaper = {1189, 841, 594, 420, 297, 210, 148, 105};

/// Options that need another option.
enum class Needs { Nothing, Frames };

struct Option
{
    const char *name;
    const char *value; ///< name of the value in the help; empty for an option without value
    const char *description;
    const char *expected; ///< valid values; null for whole numbers from `first` to `last`
    int first = 0;
    int last = 0;
    const char *defaultValue = nullptr;
    unsigned features = 0; ///< of the formats that the option concerns; 0 for all
    Needs needs = Needs::Nothing;
};

constexpr const char *colorNames = "an SVG colour name or #rrggbb";
constexpr const char *angles = "three numbers of degrees";

const Option optionTable[] = {
    {"format", "F", "Format", "", 0, 0, "the extension of FILE"},
    {"preset", "N", "Built-in preset", nullptr, 1, Pendrix3D::presetCount, "1"},
    {"row", "N", "Row of the settings file, or of --rows", nullptr, 1, Pendrix3D::rowCount},
    {"rows", "FILE", "Text file with rows as the application copies them", "a file name, or - for standard input"},
    {"values", "F1,F2,F3,P1,P2,C", "Parameter row", "three frequencies, two phases and the colour mode"},
    {"frame", "N", "Frame of the animation", nullptr, 0, 1000000, "0"},
    {"frames", "N", "Number of files name-00001.ext, name-00002.ext, ...", nullptr, 1, maxFrames, "one file FILE"},
    {"frame-step", "N", "Frames of the animation from file to file", nullptr, 0, 1000, "1", 0, Needs::Frames},
    {"turn", "X,Y,Z", "Rotation about x, y and z", angles, 0, 0, "0,0,0", Picture},
    {"turn-step", "X,Y,Z", "Rotation added from file to file", angles, 0, 0, "0,0,0", Picture, Needs::Frames},
    // setPage has the same limits and default values.
    {"size", "WxH", "Size of the page",
     "WxH in pixels for png, 1 to 16384, in millimetres for svg and pdf, 1 to 5000; WxHmm in millimetres; or a0 to a6",
     0, 0, "1600x1600 for png, else 200x200", Picture},
    {"dpi", "N", "Pixels per inch of a png whose --size is in millimetres", nullptr, 10, 2400, "300", Pixels},
    {"margin", "M", "Scale and centre the curve to fill the page up to this margin",
     "0 to less than half of the smaller side of --size, with room for --line-width", 0, 0, nullptr, Picture},
    {"line-width", "W", "Line width in the unit of --size", "above 0, up to the largest --size", 0, 0,
     "0.2 mm, or 1 pixel per 500 pixels of height and at least 1", Picture},
    {"smooth", "", "Draw smooth curves instead of straight segments", "", 0, 0, nullptr, Picture},
    {"order", "O", "Order of the segments", "curve, or depth so that near ones hide far ones", 0, 0, "curve", Paths},
    {"color", "COLOR", "One colour for the whole curve", colorNames},
    {"background", "COLOR", "Colour of the page", "an SVG colour name, #rrggbb or none", 0, 0,
     "black for png, else none", Picture},
};

/// Returns the valid values of `option`.
QString expectedValues(const Option &option)
{
    if (qstrcmp(option.name, "format") == 0)
        return formatNames(0);
    return option.expected != nullptr ? QString::fromLatin1(option.expected)
                                      : QStringLiteral("%1 to %2").arg(option.first).arg(option.last);
}

const Option &optionOf(const char *name)
{
    return *std::find_if(std::begin(optionTable), std::end(optionTable),
                         [name](const Option &option) { return qstrcmp(option.name, name) == 0; });
}

/// Returns the error for `value` of the option `name`.
ExportError wrongValue(const char *name, const QString &value)
{
    return wrongUsage(QStringLiteral("invalid value of --") + QLatin1String(name),
                      value + QStringLiteral(": expected ") + expectedValues(optionOf(name)));
}

/// Returns the value of `text`, a whole number from `first` to `last` in digits only. Returns nothing for other text.
std::optional<int> wholeNumber(const QString &text, int first, int last)
{
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    bool fits = false;
    const int number = text.toInt(&fits);
    if (!fits || !std::all_of(text.begin(), text.end(), isDigit) || number < first || number > last)
        return {};
    return number;
}

/// Returns the value of `text`, a finite decimal number. Returns nothing for other text.
std::optional<double> decimalNumber(const QString &text)
{
    const auto isPart = [](QChar c) { return QStringLiteral("0123456789+-.eE").contains(c); };
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number) || !std::all_of(text.begin(), text.end(), isPart))
        return {};
    return number;
}

/// Returns the colour named `value` in any case: an invalid colour for "none", nothing for an unknown name.
std::optional<QColor> colorOf(const QString &value)
{
    const QString text = value.toLower();
    if (text == QLatin1String("none"))
        return QColor();
    const bool isHex = text.startsWith(QLatin1Char('#')) && text.size() == 7;
    const bool isName = text != QLatin1String("transparent") && QColor::colorNames().contains(text);
    const QColor color = isHex || isName ? QColor(text) : QColor();
    return color.isValid() ? std::optional(color) : std::nullopt;
}

/// Returns the index of the dot before the extension of `path`, or its length if it has no extension.
int extensionDot(const QString &path)
{
    const auto dot = path.lastIndexOf(QLatin1Char('.'));
    return static_cast<int>(dot > path.lastIndexOf(QLatin1Char('/')) ? dot : path.size());
}

QVector<float> valuesOf(const QString &text)
{
    QVector<float> row;
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString &part : parts) {
        const auto value = valueOfField(part);
        if (!value || !std::isfinite(*value))
            throw wrongValue("values", text);
        row.append(*value);
    }
    if (row.size() != Pendrix3D::rowLength)
        throw wrongValue("values", text);
    return row;
}

/// The options of a command line, by name.
class CommandLine
{
public:
    explicit CommandLine(const QStringList &arguments)
    {
        parser.setApplicationDescription(QStringLiteral("Exports a curve of Pendrix 3D to a file."));
        parser.addPositionalArgument(QStringLiteral("FILE"),
                                     QStringLiteral("File to write; - is standard output and requires --format."));
        for (const Option &option : optionTable) {
            QString text = QLatin1String(option.description);
            const QString expected = expectedValues(option);
            if (!expected.isEmpty())
                text += QStringLiteral(": ") + expected;
            text += QLatin1Char('.');
            if (option.defaultValue != nullptr)
                text += QStringLiteral(" Default: %1.").arg(QLatin1String(option.defaultValue));
            if (option.features != 0)
                text += QStringLiteral(" Only for %1.").arg(formatNames(option.features));
            parser.addOption({QLatin1String(option.name), text, QLatin1String(option.value)});
        }
        parser.addOptions({
            {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Prints this help.")},
            {{QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Prints the version.")},
        });
        if (parser.parse(arguments))
            return;
        const QStringList unknown = parser.unknownOptionNames();
        throw unknown.isEmpty() ? wrongUsage(QStringLiteral("invalid option"), parser.errorText())
                                : wrongUsage(QStringLiteral("unknown option"), unknown.first());
    }

    bool isSet(const char *name) const { return parser.isSet(QLatin1String(name)); }
    QString value(const char *name) const { return parser.value(QLatin1String(name)); }
    QStringList files() const { return parser.positionalArguments(); }
    QString help() const { return parser.helpText(); }

    /// Throws if an option has no effect with `format` or without another option.
    void checkEffects(const Format &format) const
    {
        for (const Option &option : optionTable) {
            const auto rejectUnless = [this, &option](bool isEffective, const QString &needed) {
                if (isSet(option.name) && !isEffective)
                    throw wrongUsage(QStringLiteral("invalid option"),
                                     QStringLiteral("--%1: only for %2").arg(QLatin1String(option.name), needed));
            };
            rejectUnless(option.features == 0 || (option.features & format.features) != 0,
                         formatNames(option.features));
            rejectUnless(option.needs != Needs::Frames || isSet("frames"), QStringLiteral("--frames"));
        }
    }

    /// Returns the number of the option `name`, or `defaultValue` without it. Throws unless it is in the option's
    /// range.
    int number(const char *name, int defaultValue) const
    {
        if (!isSet(name))
            return defaultValue;
        const Option &option = optionOf(name);
        const auto number = wholeNumber(value(name), option.first, option.last);
        if (!number)
            throw wrongValue(name, value(name));
        return *number;
    }

    /// Returns the colour of the option `name`, or `defaultValue` without it.
    QColor color(const char *name, const QColor &defaultValue) const
    {
        if (!isSet(name))
            return defaultValue;
        const auto color = colorOf(value(name));
        if (!color)
            throw wrongValue(name, value(name));
        return *color;
    }

    /// Returns the angles of the option `name` in degrees, less than a full turn, or zeros without it.
    std::array<double, 3> angles(const char *name) const
    {
        std::array<double, 3> angles = {};
        if (!isSet(name))
            return angles;
        const QStringList parts = value(name).split(QLatin1Char(','));
        if (parts.size() != static_cast<int>(angles.size()))
            throw wrongValue(name, value(name));
        std::transform(parts.begin(), parts.end(), angles.begin(), [this, name](const QString &part) {
            const auto degrees = decimalNumber(part);
            if (!degrees)
                throw wrongValue(name, value(name));
            return std::fmod(*degrees, 360.0);
        });
        return angles;
    }

private:
    QCommandLineParser parser;
};

RowSource rowSource(const CommandLine &line)
{
    const bool hasRow = line.isSet("row") || line.isSet("rows");
    if (int(line.isSet("preset")) + int(line.isSet("values")) + int(hasRow) > 1)
        throw wrongUsage(QStringLiteral("conflicting options"),
                         QStringLiteral("use only one of --preset, --values, and --row or --rows"));
    RowSource row;
    if (line.isSet("values")) {
        row.kind = RowSource::Values;
        row.values = valuesOf(line.value("values"));
    } else if (hasRow) {
        row.kind = line.isSet("rows") ? RowSource::Text : RowSource::Settings;
        row.number = line.number("row", 1);
        row.file = line.value("rows");
        if (line.isSet("rows") && row.file.isEmpty())
            throw wrongValue("rows", row.file);
    } else {
        row.number = line.number("preset", 1);
    }
    return row;
}

/// A size with its unit.
struct Size
{
    double width;
    double height;
    bool isInPixels;
};

/// Returns the size that `text` describes; without a unit in pixels if `inPixels`, else in millimetres. Returns nothing
/// for other text.
std::optional<Size> sizeOf(const QString &text, bool inPixels)
{
    for (std::size_t i = 0; i + 1 < sidesOfPaper.size(); ++i) {
        if (text.compare(QStringLiteral("a%1").arg(i), Qt::CaseInsensitive) == 0)
            return Size{static_cast<double>(sidesOfPaper[i + 1]), static_cast<double>(sidesOfPaper[i]), false};
    }
    const bool hasUnit = text.endsWith(QLatin1String("mm"));
    const bool isInPixels = inPixels && !hasUnit;
    const QStringList parts = text.left(text.size() - (hasUnit ? 2 : 0)).split(QLatin1Char('x'));
    const auto length = [isInPixels](const QString &part) -> std::optional<double> {
        if (isInPixels)
            return wholeNumber(part, 1, maxPixels);
        const auto number = decimalNumber(part);
        return number && *number >= 1.0 && *number <= maxMillimetres ? number : std::nullopt;
    };
    const auto width = length(parts.value(0));
    const auto height = length(parts.value(1));
    if (parts.size() != 2 || !width || !height)
        return {};
    return Size{*width, *height, isInPixels};
}

/// Stores the page and the margin of `line` in `options`, in pixels for an image.
void setPage(Options &options, const CommandLine &line)
{
    const bool isImage = (options.format->features & Pixels) != 0;
    const QString sizeText = line.isSet("size") ? line.value("size")
                             : isImage          ? QStringLiteral("1600x1600")
                                                : QStringLiteral("200x200");
    const auto size = sizeOf(sizeText, isImage);
    if (!size)
        throw wrongValue("size", sizeText);
    if (line.isSet("dpi") && size->isInPixels)
        throw wrongUsage(QStringLiteral("invalid option"), QStringLiteral("--dpi: only for a --size in millimetres"));

    Page &page = options.page;
    double perUnit = 1.0; // lengths on the page per unit of the options
    page.width = size->width;
    page.height = size->height;
    if (isImage && !size->isInPixels) {
        const int dpi = line.number("dpi", 300);
        perUnit = dpi / millimetresPerInch;
        page.dotsPerMillimetre = perUnit;
        page.width = std::max(std::round(size->width * perUnit), 1.0);
        page.height = std::max(std::round(size->height * perUnit), 1.0);
        if (page.width > maxPixels || page.height > maxPixels)
            throw wrongUsage(QStringLiteral("invalid value of --size"),
                             QStringLiteral("%1: expected at most %2 pixels, not %3x%4 at --dpi %5")
                                 .arg(sizeText)
                                 .arg(maxPixels)
                                 .arg(page.width)
                                 .arg(page.height)
                                 .arg(dpi));
    }

    double lineWidth = size->isInPixels ? std::max(page.height / 500.0, 1.0) : 0.2;
    if (line.isSet("line-width")) {
        const auto width = decimalNumber(line.value("line-width"));
        if (!width || *width <= 0.0 || *width > (size->isInPixels ? maxPixels : maxMillimetres))
            throw wrongValue("line-width", line.value("line-width"));
        lineWidth = *width;
    }
    page.lineWidth = std::max(lineWidth * perUnit, isImage ? minLineWidth : 0.0);
    if (line.isSet("margin")) {
        const auto margin = decimalNumber(line.value("margin"));
        const double smallerSide = std::min(page.width, page.height);
        if (!margin || *margin < 0.0 || 2.0 * *margin * perUnit + page.lineWidth >= smallerSide)
            throw wrongValue("margin", line.value("margin"));
        options.margin = *margin * perUnit;
    }
    page.background = line.color("background", isImage ? QColor(Qt::black) : QColor());
    page.isSmooth = line.isSet("smooth");
    const QString order = line.isSet("order") ? line.value("order") : QStringLiteral("curve");
    page.isInDepthOrder = order == QLatin1String("depth");
    if (!page.isInDepthOrder && order != QLatin1String("curve"))
        throw wrongValue("order", order);
    options.turn = line.angles("turn");
    options.turnStep = line.angles("turn-step");
    page.turn = options.turnOfFrame(0);
}

/// Returns the format of `line` for `file`.
const Format *formatOf(const CommandLine &line, const QString &file)
{
    const Format *const format =
        ::formatOf(line.isSet("format") ? line.value("format") : file.mid(extensionDot(file) + 1));
    if (format != nullptr)
        return format;
    if (line.isSet("format"))
        throw wrongValue("format", line.value("format"));
    throw wrongUsage(QStringLiteral("unknown format"), file + QStringLiteral(": use --format or a name that ends in ") +
                                                           formatNames(0, QStringLiteral(".")));
}

} // namespace

Turn Options::turnOfFrame(int index) const
{
    const auto angle = [this, index](std::size_t axis) {
        const double units = std::round(std::fmod(turn.at(axis) + index * turnStep.at(axis), 360.0) * 16.0);
        return Camera::normalisedAngle(static_cast<int>(units)) % Camera::fullTurn;
    };
    return {angle(0), angle(1), angle(2)};
}

Options parseOptions(const QStringList &arguments)
{
    const CommandLine line(arguments);
    Options options;
    if (line.isSet("help")) {
        options.message = line.help();
        return options;
    }
    if (line.isSet("version")) {
        options.message = QStringLiteral("pendrix3d-export " PENDRIX_VERSION "\n");
        return options;
    }

    const QStringList files = line.files();
    if (files.isEmpty() || files.first().isEmpty())
        throw wrongUsage(QStringLiteral("missing argument"), QStringLiteral("FILE"));
    if (files.size() > 1)
        throw wrongUsage(QStringLiteral("unexpected argument"), files.at(1));
    options.file = files.first();
    if (options.file == QLatin1String("-")) {
        if (!line.isSet("format"))
            throw wrongUsage(QStringLiteral("missing option"),
                             QStringLiteral("--format: needed for standard output, or use ./- for a file"));
        if (line.isSet("frames"))
            throw wrongUsage(QStringLiteral("invalid option"), QStringLiteral("--frames: not for standard output"));
    }
    options.format = formatOf(line, options.file);
    line.checkEffects(*options.format);

    options.row = rowSource(line);
    options.firstFrame = line.number("frame", 0);
    options.frameCount = line.number("frames", 0);
    options.frameStep = line.number("frame-step", 1);
    options.color = line.color("color", QColor());
    if (line.isSet("color") && !options.color.isValid())
        throw wrongValue("color", line.value("color"));
    if ((options.format->features & Picture) != 0)
        setPage(options, line);
    return options;
}

QString numberedPath(const QString &path, int number)
{
    const int dot = extensionDot(path);
    return QStringLiteral("%1-%2%3").arg(path.left(dot), QStringLiteral("%1").arg(number, 5, 10, QLatin1Char('0')),
                                         path.mid(dot));
}
