#include <QDirIterator>
#include <QImage>
#include <QResource>
#include <QtTest>

namespace {

QString iconFolder()
{
    return QStringLiteral(":/Tessera/rsc/icons");
}

QStringList iconNames()
{
    return {
        "add.png",         "append.png", "clear.png", "clipcopy.png", "clipcopy01.png", "clippaste.ico",
        "clippaste01.png", "delete.png", "draw.png",  "export1.png",  "generate01.png", "open.png",
        "rand.png",        "random.png", "save.png",  "saveas.png",
    };
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class ResourcesTest : public QObject
{
    Q_OBJECT

private slots:
    void isRegisteredBeforeMain() { QCOMPARE(QDir(iconFolder()).entryList(QDir::Files, QDir::Name), iconNames()); }

    void holdsPageAndIconsOnly()
    {
        QStringList files;
        for (QDirIterator each(":/", QDir::Files, QDirIterator::Subdirectories); each.hasNext();) {
            const QString path = each.next();
            if (!path.startsWith(":/q")) // Qt's resources
                files << path.section('/', -1);
        }
        files.sort();
        QCOMPARE(files, QStringList("about.html") + iconNames());
    }

    void hasFormatVersionTwo()
    {
        const QByteArray source = contentOf(PENDRIX_BUNDLE_SOURCE);
        QVERIFY(source.contains("qInitResources_pendrix"));
        QCOMPARE(source.count("int version = "), source.count("int version = 2;"));
        QVERIFY(source.count("int version = 2;") > 0);
    }

    void iconsAreStoredUnchanged_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList names = iconNames();
        for (const QString &name : names)
            QTest::newRow(qPrintable(name)) << name;
    }

    void iconsAreStoredUnchanged()
    {
        QFETCH(QString, name);
        const QString path = iconFolder() + '/' + name;
        const QResource resource(path);
        QVERIFY(resource.isValid());
        const QByteArray file = contentOf(PENDRIX_RESOURCES "/Tessera/rsc/icons/" + name);
        QVERIFY(!file.isEmpty());
        QCOMPARE(contentOf(path), file);
        const QByteArray stored(reinterpret_cast<const char *>(resource.data()), static_cast<int>(resource.size()));
        if (name.endsWith(".ico")) {
            QVERIFY(stored.size() < file.size());
            QCOMPARE(qUncompress(stored), file);
        } else {
            QCOMPARE(stored, file);
        }

        const QImage image(path);
        QCOMPARE(image.size(), QSize(32, 32));
        QVERIFY(image.hasAlphaChannel());
        QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
        int covered = 0;
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 32; ++x)
                covered += qAlpha(image.pixel(x, y)) > 127;
        }
        QVERIFY2(covered > 100 && covered < 1000, QByteArray::number(covered));
    }

    void pageIsStoredUnchanged()
    {
        const QResource page(":/about.html");
        const QByteArray file = contentOf(PENDRIX_RESOURCES "/about.html");
        QVERIFY(!file.isEmpty());
        QCOMPARE(QByteArray(reinterpret_cast<const char *>(page.data()), static_cast<int>(page.size())), file);
    }

    void everyIconHasItsSource()
    {
        const QStringList names = iconNames();
        for (const QString &name : names)
            QVERIFY2(QFile::exists(PENDRIX_RESOURCES "/icon-sources/" + name.section('.', 0, 0) + ".svg"),
                     qPrintable(name));
    }
};

QTEST_GUILESS_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
