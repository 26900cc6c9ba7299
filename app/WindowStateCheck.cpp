#include "app/WindowStateCheck.h"

#include <QDataStream>
#include <QString>

namespace {

/// Reads a layout piece by piece and remembers whether all was as it should be.
class LayoutReader
{
public:
    explicit LayoutReader(const QByteArray &state) : stream(state) { stream.setVersion(QDataStream::Qt_5_0); }

    /// Whether every piece so far was right and nothing is left.
    bool isComplete() const { return right && stream.atEnd() && stream.status() == QDataStream::Ok; }

    void expectNumber(qint32 low, qint32 high)
    {
        qint32 number = 0;
        stream >> number;
        right = right && number >= low && number <= high;
    }

    void expectNumber(qint32 number) { expectNumber(number, number); }

    void expectByte(quint8 low, quint8 high)
    {
        quint8 byte = 0;
        stream >> byte;
        right = right && byte >= low && byte <= high;
    }

    void expectByte(quint8 byte) { expectByte(byte, byte); }

    void expectName(const char *name)
    {
        // The toolkit's own reader of texts takes what is there, whatever length they claim.
        QString text;
        stream >> text;
        right = right && text == QLatin1String(name);
    }

    void skipNumbers(int count)
    {
        for (int i = 0; i < count; ++i) {
            qint32 number = 0;
            stream >> number;
        }
    }

private:
    QDataStream stream;
    bool right = true;
};

} // namespace

bool isMainWindowStateCheck(const QByteArray &state)
{
    struct Dock
    {
        qint32 area;
        const char *name;
    };
    constexpr Dock docks[] = {{0, "dockParams"}, {1, "dockWidget"}}; // left, right

    LayoutReader reader(state);
    reader.expectNumber(0xFF); // a layout
    reader.expectNumber(0);    // of version 0
    reader.expectByte(0xFD);   // the docks
    reader.expectNumber(2);
    for (const Dock &dock : docks) {
        reader.expectNumber(dock.area);
        reader.skipNumbers(2);   // size of the area
        reader.expectByte(0xFC); // a row
        reader.expectByte(1, 2); // horizontal or vertical
        reader.expectNumber(1);  // of one
        reader.expectByte(0xFB); // dock
        reader.expectName(dock.name);
        reader.expectByte(0, 1); // hidden or shown
        reader.skipNumbers(4);   // position, size, least and greatest size
    }
    reader.skipNumbers(2); // size of the middle
    for (int corner = 0; corner < 4; ++corner)
        reader.expectNumber(1, 8); // the area that it belongs to
    reader.expectByte(0xFC);       // the toolbars
    reader.expectNumber(1);        // in one line
    reader.expectNumber(0, 3);     // of any area
    reader.expectNumber(1);
    reader.expectName("mainToolBar");
    reader.expectByte(0, 3); // hidden or shown, lying or standing
    reader.skipNumbers(4);   // position, size, geometry when it floats
    return reader.isComplete();
}
