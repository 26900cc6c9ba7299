#include "app/SettingsTypes.h"

#include <QDataStream>
#include <QIODevice>
#include <QMetaType>
#include <QVector>

namespace {

/// The fewest bytes that an element takes in a stream: a number its own, a vector those of its count.
constexpr qint64 smallestElement = 4;

/// Reads the next element of a container.
void readElement(QDataStream &stream, int &element)
{
    stream >> element;
}

void readElement(QDataStream &stream, float &element)
{
    stream >> element;
}

template <typename T>
void readElement(QDataStream &stream, QVector<T> &vector)
{
    vector.clear();
    quint32 count = 0;
    stream >> count;
    if (stream.status() == QDataStream::Ok && qint64{count} * smallestElement > stream.device()->bytesAvailable())
        stream.setStatus(QDataStream::ReadCorruptData);
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        T element{};
        readElement(stream, element);
        vector.append(element);
    }
    if (stream.status() != QDataStream::Ok)
        vector.clear();
}

template <typename Container>
void save(QDataStream &stream, const void *container)
{
    stream << *static_cast<const Container *>(container);
}

template <typename Container>
void load(QDataStream &stream, void *container)
{
    stream.resetStatus();
    readElement(stream, *static_cast<Container *>(container));
}

template <typename Container>
void registerAs(const char *name)
{
    qRegisterMetaType<Container>(name);
    QMetaType::registerStreamOperators(name, save<Container>, load<Container>);
}

} // namespace

void registerSettingsTypes()
{
    registerAs<QVector<int>>("QVector<int>");
    registerAs<QVector<QVector<float>>>("QVector<QVector<float>>");
}
