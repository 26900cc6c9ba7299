#include "export/Options.h"

#include "engine/RowText.h"
#include "export/ExportError.h"
#include "view/Camera.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace {

constexpr int presetCount = 12;
constexpr int lastFrame = 1000000;
constexpr int mostFrames = 99999;
constexpr double mostPixels = 16384.0;
constexpr double mostMillimetres = 5000.0;

struct FormatName
{
    const char *name;
    Format format;
};
constexpr std::array<FormatName, 5> formatNames = {
    {{"png", Format::Png}, {"svg", Format::Svg}, {"pdf", Format::Pdf}, {"ply", Format::Ply}, {"csv", Format::Csv}}};

ExportError wrongUsage(const QString &problem, const QString &detail)
{
    return {ExportError::wrongUsage, problem, detail};
}

/// Returns the error for `value` of the option `name`.
ExportError wrongValue(const char *name, const QString &value)
{
    return wrongUsage(QStringLiteral("invalid value of --") + QLatin1String(name), value);
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

/// Returns the format named `name` in any case, nothing for an unknown name.
std::optional<Format> formatOf(const QString &name)
{
    for (const FormatName &each : formatNames) {
        if (name.compare(QLatin1String(each.name), Qt::CaseInsensitive) == 0)
            return each.format;
    }
    return {};
}

/// Returns the index of the dot before the extension of `path`, or its length if it has no extension.
int extensionDot(const QString &path)
{
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    return dot > path.lastIndexOf(QLatin1Char('/')) ? dot : path.size();
}

/// Returns `degrees` in 1/16 degree, rounded, 0 to 5759.
int angleOf(double degrees)
{
    const double units = std::round(std::fmod(degrees, 360.0) * 16.0);
    return Camera::normalisedAngle(static_cast<int>(units)) % Camera::fullTurn;
}

Turn turnOf(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    std::array<int, 3> angles = {};
    if (parts.size() != static_cast<int>(angles.size()))
        throw wrongValue("turn", text);
    std::transform(parts.begin(), parts.end(), angles.begin(), [&text](const QString &part) {
        const auto degrees = decimalNumber(part);
        if (!degrees)
            throw wrongValue("turn", text);
        return angleOf(*degrees);
    });
    return {angles[0], angles[1], angles[2]};
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

/// Stores the size `text`, WxH, in `page`: in pixels or, unless `inPixels`, in millimetres. Throws if it is malformed.
void setSize(Page &page, const QString &text, bool inPixels)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    const auto length = [inPixels](const QString &part) -> std::optional<double> {
        if (inPixels)
            return wholeNumber(part, 1, static_cast<int>(mostPixels));
        const auto number = decimalNumber(part);
        return number && *number >= 1.0 && *number <= mostMillimetres ? number : std::nullopt;
    };
    const auto width = length(parts.value(0));
    const auto height = length(parts.value(1));
    if (parts.size() != 2 || !width || !height)
        throw wrongValue("size", text);
    page.width = *width;
    page.height = *height;
}

/// The options of a command line, by name.
class CommandLine
{
public:
    explicit CommandLine(const QStringList &arguments)
    {
        parser.setApplicationDescription(QStringLiteral("Exports a curve of Pendrix 3D to a file."));
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("File to write."));
        parser.addOptions({
            option("format", "F", "Format: png, svg, pdf, ply or csv. Default: the extension of FILE."),
            option("preset", "N", "Built-in preset 1 to 12. Default: 1."),
            option("row", "N", "Row 1 to 64 of the settings file, or of --rows."),
            option("rows", "FILE", "Text file with rows as the application copies them; - is standard input."),
            option("values", "F1,F2,F3,P1,P2,C", "Parameter row: three frequencies, two phases and the colour mode."),
            option("frame", "N", "Frame of the animation, 0 to 1000000. Default: 0."),
            option("turn", "X,Y,Z", "Rotation about x, y and z in degrees. Default: 0,0,0."),
            option("size", "WxH",
                   "Size: up to 16384 pixels for PNG, up to 5000 millimetres for SVG and PDF. Default: 1600x1600 for "
                   "PNG, 200x200 for SVG and PDF."),
            option("line-width", "W",
                   "Line width in the unit of --size. Default: 1 pixel per 500 pixels of height, at least 1, for PNG; "
                   "0.2 mm for SVG and PDF."),
            option("color", "COLOR", "One colour for the whole curve: an SVG colour name or #rrggbb."),
            option("background", "COLOR", "Colour of the page, or none. Default: black for PNG, none for SVG and PDF."),
            option("frames", "N", "Number of frames, 1 to 99999, to export to name-00001.ext, name-00002.ext, ..."),
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

    /// Returns the number of the option `name`, or `byDefault` without it. Throws unless it is `first` to `last`.
    int number(const char *name, int first, int last, int byDefault) const
    {
        if (!isSet(name))
            return byDefault;
        const auto number = wholeNumber(value(name), first, last);
        if (!number)
            throw wrongValue(name, value(name));
        return *number;
    }

    /// Returns the colour of the option `name`, or `byDefault` without it.
    QColor color(const char *name, const QColor &byDefault) const
    {
        if (!isSet(name))
            return byDefault;
        const auto color = colorOf(value(name));
        if (!color)
            throw wrongValue(name, value(name));
        return *color;
    }

private:
    static QCommandLineOption option(const char *name, const char *value, const char *description)
    {
        return {QLatin1String(name), QLatin1String(description), QLatin1String(value)};
    }

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
        row.number = line.number("row", 1, Pendrix3D::rowCount, 1);
        row.file = line.value("rows");
        if (line.isSet("rows") && row.file.isEmpty())
            throw wrongValue("rows", row.file);
    } else {
        row.number = line.number("preset", 1, presetCount, 1);
    }
    return row;
}

Page page(const CommandLine &line, Format format)
{
    const bool inPixels = format == Format::Png;
    const bool isDrawing = inPixels || format == Format::Svg || format == Format::Pdf;
    if (line.isSet("size") && !isDrawing)
        throw wrongUsage(QStringLiteral("invalid option"), QStringLiteral("PLY and CSV have no --size"));
    Page page;
    setSize(page,
            line.isSet("size") ? line.value("size")
            : inPixels         ? QStringLiteral("1600x1600")
                               : QStringLiteral("200x200"),
            inPixels);
    page.lineWidth = inPixels ? std::max(page.height / 500.0, 1.0) : 0.2;
    if (line.isSet("line-width")) {
        const auto width = decimalNumber(line.value("line-width"));
        if (!width || *width <= 0.0 || *width > (inPixels ? mostPixels : mostMillimetres))
            throw wrongValue("line-width", line.value("line-width"));
        page.lineWidth = *width;
    }
    page.background = line.color("background", inPixels ? QColor(Qt::black) : QColor());
    if (line.isSet("turn"))
        page.turn = turnOf(line.value("turn"));
    return page;
}

} // namespace

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

    if (line.isSet("format")) {
        const auto format = formatOf(line.value("format"));
        if (!format)
            throw wrongValue("format", line.value("format"));
        options.format = *format;
    } else {
        const auto format = formatOf(options.file.mid(extensionDot(options.file) + 1));
        if (!format)
            throw wrongUsage(QStringLiteral("unknown format"), options.file);
        options.format = *format;
    }

    options.row = rowSource(line);
    options.firstFrame = line.number("frame", 0, lastFrame, 0);
    options.frameCount = line.number("frames", 1, mostFrames, 0);
    options.color = line.color("color", QColor());
    if (line.isSet("color") && !options.color.isValid())
        throw wrongValue("color", line.value("color"));
    options.page = page(line, options.format);
    return options;
}

QString numberedPath(const QString &path, int number)
{
    const int dot = extensionDot(path);
    return QStringLiteral("%1-%2%3").arg(path.left(dot), QStringLiteral("%1").arg(number, 5, 10, QLatin1Char('0')),
                                         path.mid(dot));
}
