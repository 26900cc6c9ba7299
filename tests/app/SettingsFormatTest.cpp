// The text of the settings file, read and saved without a window.

#include "app/Settings.h"
#include "tests/support/FloatBits.h"
#include "tests/support/SampleSize.h"
#include "tests/support/SettingsText.h"

#include <QProcess>
#include <QtTest>

#include <algorithm>
#include <random>
#include <utility>

namespace {

/// Returns the parameter list in a settings file with `text`.
Rows rowsIn(const QByteArray &text)
{
    const SettingsFolder folder;
    return folder.write(text) ? storedParamList(*openSettings()) : Rows();
}

/// Returns the settings file after a save of markedRows(7) over a file with `text`.
QByteArray saved(const QByteArray &text)
{
    const SettingsFolder folder;
    if (!folder.write(text))
        return {};
    openSettings()->setValue("paramList", QVariant::fromValue(markedRows(7)));
    return folder.read();
}

/// Returns the text that plain QSettings of Qt 5 writes.
QByteArray plainText(const QSettings::SettingsMap &values)
{
    const SettingsFolder folder;
    {
        QSettings plain(folder.path("plain.conf"), QSettings::NativeFormat);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            plain.setValue(it.key(), it.value());
    }
    QFile file(folder.path("plain.conf"));
    QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    // Qt 6 writes other names of types, with their lengths.
    text.replace("\\vQList<int>", "\\rQVector<int>")
        .replace("\\x14QList<QList<float>>", "\\x19QVector<QVector<float> >");
    return text;
}

/// Returns the line of markedRows(7) as a save writes it.
QByteArray savedLine()
{
    return plainText({{"paramList", QVariant::fromValue(markedRows(7))}})
        .mid(QByteArray("[General]\n").size())
        .trimmed();
}

} // namespace

class SettingsFormatTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("HOME", "/nonexistent");
        qputenv("XDG_CONFIG_HOME", "/nonexistent");
        openSettings(); // registers the container types
    }

    // ---- Reading ----

    void everySpellingOfRowTypeIsRead()
    {
        for (const char *name : {"QVector<QVector<float> >", "QVector<QVector<float>>", "QList<QList<float>>"}) {
            const QByteArray line = variantLine("paramList", userValue(name, streamed(markedRows(3))));
            QCOMPARE(rowsIn("[General]\n" + line), markedRows(3));
        }
    }

    void columnWidthsOfEitherQtAreRead()
    {
        for (const char *line :
             {R"(colsWidth=@Variant(\0\0\0\x7f\0\0\0\rQVector<int>\0\0\0\0\x2\0\0\0)\xff\xff\xff\xff))",
              R"(colsWidth=@Variant(\0\0\0\x7f\0\0\0\vQList<int>\0\0\0\0\x2\0\0\0)\xff\xff\xff\xff))"}) {
            const SettingsFolder folder;
            QVERIFY(folder.write(QByteArray("[General]\n") + line + '\n'));
            const auto widths = openSettings()->value("colsWidth").value<QVector<int>>();
            QCOMPARE(widths, (QVector<int>{41, -1}));
        }
    }

    void containersAreRegisteredByName()
    {
        const auto read = [](const QByteArray &bytes) {
            QVariant value;
            QDataStream stream(bytes);
            stream.setVersion(QDataStream::Qt_4_0);
            stream >> value;
            return value;
        };
        const QVector<int> widths = {41, -1};
        QCOMPARE(read(userValue("QVector<int>", streamed(widths))).value<QVector<int>>(), widths);
        QCOMPARE(read(userValue("QVector<QVector<float>>", streamed(markedRows(3)))).value<Rows>(), markedRows(3));
    }

    void malformedListsAreIgnored()
    {
        const Rows rows = markedRows(3);
        for (const QByteArray &content :
             {QByteArray(), streamed(Rows()), streamed(Rows(64)), streamed(rows.mid(1)), streamed(rows + rows.mid(63)),
              streamed(rows.mid(1) + Rows{QVector<float>(5)}), streamed(rows.mid(1) + Rows{QVector<float>(7)}),
              streamed(rows) + '\0', streamed(rows).chopped(1), streamed(0x7FFFFFFFU),
              streamed(0xFFFFFFFFU) + QByteArray(1000, '\0'),
              streamed(64U) + streamed(0x7FFFFFFFU) + QByteArray(1000, '\1'),
              streamed(64U) + streamed(0x40000000U) + QByteArray(1000, '\1')}) {
            const QByteArray line = variantLine("paramList", userValue("QVector<QVector<float> >", content));
            QVERIFY2(rowsIn("[General]\n" + line).isEmpty(), content.left(50).toHex());
        }
    }

    void valuesOfOtherTypesAreIgnored()
    {
        QByteArray nested;
        for (int i = 0; i < 100000; ++i)
            nested += streamed(9U) + streamed(1U);
        const QByteArray list = escapedText(streamed(9U) + streamed(0x7FFFFFFFU)) + ')';
        QVector<QByteArray> values;
        // Many of them crash or hang Qt's parser or writer: lists of 2^31 - 1, nested lists, an unknown time zone.
        for (const char *text :
             {"", "7", "text", "a, b", "@Invalid()", "@Size(3 4)", "@Variant(", "@Variant()", "@DateTime()",
              "@Strange(1)", "\\x", "\"open", "a, @Variant(LIST, b", "\"@Var\"iant(LIST", "\\x40Vari\\141nt(LIST",
              "@Var\\\niant(LIST", "@Var\\\r\niant(LIST", "\"@Variant(\nLIST\"", "@DateTime(DATE"})
            values << QByteArray(text)
                          .replace("LIST", list)
                          .replace("DATE", escapedText(streamed(16U) + QByteArray(13, '\0') + '\3') + ')');
        for (const QByteArray &bytes :
             {streamed(9U) + streamed(0x7FFFFFFFU), streamed(11U) + streamed(0x7FFFFFFFU),
              streamed(71U) + streamed(0x3FFFFFFFU) + QByteArray(100, '\0'),
              userValue("QVariantList", streamed(0x7FFFFFFFU)), userValue("NoSuchType", "1234"), nested})
            values << "@Variant(" + escapedText(bytes) + ')';
        for (const QByteArray &value : std::as_const(values)) {
            for (const char *key : {"colsWidth", "geometry", "foreign", "windowState"}) {
                const SettingsFolder folder;
                QVERIFY(folder.write("[General]\n" + QByteArray(key) + '=' + value + '\n' + rowsLine(markedRows(3))));
                const auto settings = openSettings();
                QVERIFY2(!settings->contains(key), value.left(50));
                QVERIFY2(storedParamList(*settings) == markedRows(3), value.left(50));
            }
            QVERIFY2(rowsIn("[General]\nparamList=" + value + '\n').isEmpty(), value.left(50));
        }
    }

    void onlyGeneralSectionIsRead()
    {
        const auto rowsOf = [](const char *text) {
            QByteArray content(text);
            content.replace("ROWS", rowsLine(markedRows(3)).trimmed())
                .replace("OTHER", rowsLine(markedRows(9)).trimmed());
            return rowsIn(content.replace("BOMB", escapedText(streamed(9U) + streamed(0x7FFFFFFFU))));
        };
        for (const char *text :
             {"[General]\nROWS\n", "[General]\nROWS", "ROWS\n[Other]\na=1\n", "\n [ gEnErAl ] \n\t ROWS\n",
              "[General]\na=1\n[Other]\n[General]\nROWS\n", "[General]\ra=1\rROWS\rb=2\r",
              "[General]\rgeometry=@Variant(BOMB)\rROWS\r", "[General]\r\na=1\r\nROWS\r\n",
              "\xEF\xBB\xBF[General]\nROWS\n", "; \"\n[General]\nROWS ; \"\n", "[General]\nforeign=\"\nROWS\n",
              "[General]\nforeign=\"\nROWS\n\"\n", "[General]\nforeign=1\\\nROWS\n", "[General]\nOTHER\nROWS\n",
              "[General]\nROWS\nparamList=7\n"})
            QVERIFY2(rowsOf(text) == markedRows(3), text);
        for (const char *text : {"[Other]\nROWS\n", "[%General]\nROWS\n", "\xEF\xBB\xBF[Other]\nROWS\n",
                                 "[General]\n;ROWS\n", "[General]\nparamList ROWS\n", "[General]\nxROWS\n"})
            QVERIFY2(rowsOf(text).isEmpty(), text);
    }

    void rowsBehindLargeForeignTextAreRead()
    {
        const auto afterLines = [](const QByteArray &line, int size) {
            return rowsIn("[General]\n" + line.repeated(size / line.size()) + '\n' + rowsLine(markedRows(3)));
        };
        QVERIFY(afterLines("a=\n", 12000000) == markedRows(3));
        QVERIFY(afterLines("k1=1\n", 67000000) == markedRows(3));
        QVERIFY(afterLines("\"", 24000000) == markedRows(3));
        QVERIFY(afterLines(QByteArray(1, '\0'), 1000000) == markedRows(3));
    }

    void fileAbove64MebibytesIsNeitherReadNorReplaced()
    {
        constexpr qint64 limit = 64 << 20;
        const SettingsFolder folder;
        QVERIFY(folder.write("[General]\n" + rowsLine(markedRows(3))));
        QVERIFY(QFile::resize(folder.path(), limit));
        {
            const auto settings = openSettings();
            QVERIFY(settings && storedParamList(*settings) == markedRows(3));
            settings->setValue("paramList", QVariant::fromValue(markedRows(7)));
            QVERIFY(QFile::resize(folder.path(), limit + 1)); // by another program
        }
        QFile file(folder.path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.size(), limit + 1);
        QCOMPARE(file.readLine(), QByteArray("[General]\n"));
        QCOMPARE(file.readLine(), rowsLine(markedRows(3)));
        QVERIFY(!openSettings());
    }

    void saveThatExceeds64MebibytesKeepsFile()
    {
        const SettingsFolder folder;
        QVERIFY(folder.write("[General]\n") && QFile::resize(folder.path(), 64 << 20));
        openSettings()->setValue("paramList", QVariant::fromValue(markedRows(7)));
        QCOMPARE(QFileInfo(folder.path()).size(), qint64{64 << 20});
    }

    void damageToAnyByteIsHarmless()
    {
        const QByteArray good = plainText({{"paramList", QVariant::fromValue(markedRows(3))},
                                           {"colsWidth", QVariant::fromValue(QVector<int>(6, 50))},
                                           {"geometry", QByteArray("a,b")},
                                           {"windowState", QByteArray("c=d")}});
        const auto rowsStart = good.indexOf("paramList");
        const auto rowsEnd = good.indexOf('\n', rowsStart);
        QByteArray values("\0\n\r\"\\;=[\x7F\xFF", 10);
        for (int value = 0; values.size() < sampleSize(10, 266); ++value)
            values += static_cast<char>(value);
        const int step = sampleSize(37, 1);
        for (int at = 0; at < good.size(); at += step) {
            QCOMPARE(rowsIn(good.left(at)), at >= rowsEnd ? markedRows(3) : Rows());
            for (const char value : std::as_const(values)) {
                QByteArray text = good;
                text[at] = value;
                const Rows rows = rowsIn(text);
                QVERIFY2(rows.isEmpty() || rows.size() == 64, QByteArray::number(at));
                // Damage to other lines costs no rows, unless it breaks the section's name or starts a section.
                if ((at > 10 && at < rowsStart - 1 && good.at(at - 1) != '\n') || at > rowsEnd)
                    QVERIFY2(rows == markedRows(3), QByteArray::number(at) + ' ' + QByteArray::number(value));
            }
        }
    }

    void noiseIsIgnoredAndKept()
    {
        QByteArray random(sampleSize(1000000, 50000000), Qt::Uninitialized);
        std::mt19937 generator(1);
        for (char &byte : random)
            byte = static_cast<char>(generator());
        for (const QByteArray &text :
             {random, QByteArray(100000, '\0'), QByteArray(1000000, '='), QByteArray(100000, '['),
              QByteArray("a=\"\n").repeated(100001), QByteArray("a\n").repeated(sampleSize(100000, 25000000))}) {
            QVERIFY2(rowsIn(text).isEmpty(), text.left(10));
            QVERIFY2(saved(text).replace("[General]\n" + savedLine() + '\n', "") == text, text.left(10));
        }
    }

    // ---- Saving ----

    void typesHaveNamesOfQt5()
    {
        const SettingsFolder folder;
        {
            const auto settings = openSettings();
            settings->setValue("colsWidth", QVariant::fromValue(QVector<int>{41, -1}));
            settings->setValue("paramList", QVariant::fromValue(Rows{{2.0F}}));
        }
        const char *expected = R"([General]
colsWidth=@Variant(\0\0\0\x7f\0\0\0\rQVector<int>\0\0\0\0\x2\0\0\0)\xff\xff\xff\xff)
paramList=@Variant(\0\0\0\x7f\0\0\0\x19QVector<QVector<float> >\0\0\0\0\x1\0\0\0\x1@\0\0\0)
)";
        QCOMPARE(folder.read(), QByteArray(expected));
    }

    void newFileIsSameAsOfPlainQSettings()
    {
        std::mt19937 random(99);
        Rows rows(64, QVector<float>(6));
        for (QVector<float> &row : rows)
            std::generate(row.begin(), row.end(), [&] { return anyFloat(random); });
        QByteArray allBytes;
        for (int i = 0; i < 256 * 256; i += 257)
            allBytes += QByteArray(1, static_cast<char>(i)) + "0a\\\"" + static_cast<char>(i / 256);
        const QSettings::SettingsMap values = {{"paramList", QVariant::fromValue(rows)},
                                               {"colsWidth", QVariant::fromValue(QVector<int>{1, -1, 41})},
                                               {"geometry", allBytes},
                                               {"windowState", QByteArray("plain; \x0B\x0C")}};
        const SettingsFolder folder;
        {
            const auto settings = openSettings();
            for (auto it = values.cbegin(); it != values.cend(); ++it)
                settings->setValue(it.key(), it.value());
        }
        const QByteArray text = folder.read();
        QCOMPARE(text, plainText(values));
        const SettingsFolder copy; // Qt caches files by path
        QVERIFY(copy.write(text));
        const auto settings = openSettings();
        QCOMPARE(streamed(storedParamList(*settings)), streamed(rows));
        for (const char *key : {"colsWidth", "geometry", "windowState"})
            QCOMPARE(streamed(settings->value(key)), streamed(values.value(key)));
    }

    void saveKeepsForeignBytes()
    {
        const QByteArray rows[][2] = {
            {"", "[General]\nROWS\n"},
            {"[x]\na=1\n", "[General]\nROWS\n[x]\na=1\n"},
            {"\xEF\xBB\xBF[x]\na=1\n", "\xEF\xBB\xBF[General]\nROWS\n[x]\na=1\n"},
            {"[x]\n[General]\nb=2\n", "[x]\n[General]\nROWS\nb=2\n"},
            {"a=1\n[General]", "a=1\n[General]\nROWS"},
            {"[General]\nparamList=\"x\ny\"\na=1\n", "[General]\nROWS\ny\"\na=1\n"},
            {"[General]\nROWS\na=1\nROWS\n", "[General]\nROWS\na=1\n\n"},
            {"[General]\nz=1\nROWS\na= @Invalid() ; c\n[Other]\nparamList=7\n", {}}, // {}: nothing else changes
            {"[General]\rz=\"\n\"\rROWS\ra=1\r", {}},
            {"[General]\r\nROWS\r\n\r\na=@Variant(\\0)\r\n", {}},
            {"ROWS\n[General]\n", {}},
            {"[General]\na=\"\nROWS\nb=1", {}},
            {"; \"\n[General] ; g\nROWS; \"\n", {}},
            {"[General] ; note\nb=1\n", "[General] ; note\nROWS\nb=1\n"},
            {"[General];note", "[General];note\nROWS"},
        };
        for (const auto &row : rows) {
            const QByteArray after = row[1].isNull() ? row[0] : row[1];
            QCOMPARE(saved(QByteArray(row[0]).replace("ROWS", rowsLine(markedRows(3)).trimmed())),
                     QByteArray(after).replace("ROWS", savedLine()));
        }
    }

    void savedValuesAreReadBackFromDamagedFile()
    {
        const QByteArray quoted(";");
        const Rows quotedRows(64, QVector<float>(6, 0.002857F)); // 0x3B3B3C82, with two semicolons
        for (const char *text :
             {"[General]\\", "[General]\"", "foreign=\\", "[General]\nforeign=\"\ngeometry=1\n",
              "[General]\nforeign=1\\\nparamList=1", "[General]\na=\"\nparamList=1\n[x]\nb=\"\nparamList=2\n",
              "[General]\na=\"\nparamList=1\nparamList=2\n[x]\nb=\"\nparamList=3\n"}) {
            const SettingsFolder folder;
            QVERIFY(folder.write(text));
            {
                const auto settings = openSettings();
                settings->setValue("geometry", quoted);
                settings->setValue("paramList", QVariant::fromValue(quotedRows));
            }
            const QByteArray after = folder.read();
            const SettingsFolder copy;
            QVERIFY(copy.write(after));
            QCOMPARE(openSettings()->value("geometry").toByteArray(), quoted);
            QVERIFY2(storedParamList(*openSettings()) == quotedRows, text);
        }
    }

    void alternatesWithPlainQSettings()
    {
        const SettingsFolder folder;
        QVERIFY(folder.write("[General]\nmine=\"a, b\"\n[group]\nnote=\"round; 0\"\n" + rowsLine(markedRows(3))));
        {
            const auto settings = openSettings();
            settings->setValue("paramList", QVariant::fromValue(markedRows(0)));
            settings->setValue("geometry", QByteArray("\0x\"", 3));
        }
        for (int round = 1; round < 6; ++round) {
            QProcess plain;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("XDG_CONFIG_HOME", folder.path("."));
            plain.setProcessEnvironment(environment);
            plain.start(PLAIN_SETTINGS, {QString::number(round)});
            QVERIFY(plain.waitForFinished());
            QCOMPARE(QString::fromLatin1(plain.readAllStandardOutput()),
                     QString("%1 %2 round; %2").arg(10 * (round - 1)).arg(round - 1));

            const auto settings = openSettings();
            Rows rows = storedParamList(*settings);
            QVERIFY(rows.size() == 64 && rows.at(63) == markedRows(0).at(63));
            QCOMPARE(rows.at(0).at(0), static_cast<float>(round));
            QCOMPARE(settings->value("geometry").toByteArray(), QByteArray("\0x\"", 3));
            rows[0][0] = static_cast<float>(10 * round);
            settings->setValue("paramList", QVariant::fromValue(rows));
        }
        QVERIFY(folder.read().contains("\nmine=\"a, b\"\n") || folder.read().contains("\nmine=a, b\n"));
    }

    // ---- Paths ----

    void missingKeysAreReadFromFallbackFiles()
    {
        for (const char *name : {"quillmoss.conf", "system/quillmoss/pdx3.conf", "system/quillmoss.conf"}) {
            const SettingsFolder folder;
            QVERIFY(QDir().mkpath(folder.path("system/quillmoss")));
            qputenv("XDG_CONFIG_DIRS", QFile::encodeName(folder.path("system")));
            const QByteArray bomb = variantLine("geometry", streamed(9U) + streamed(0x7FFFFFFFU));
            QVERIFY(folder.write("[General]\nforeign=1\n" + bomb + rowsLine(markedRows(3)), name));
            QVERIFY(folder.write("[General]\nmine=1\n"));
            {
                const auto settings = openSettings();
                QCOMPARE(storedParamList(*settings), markedRows(3));
                QVERIFY(!settings->contains("geometry"));
                settings->setValue("windowState", QByteArray("w"));
            }
            QCOMPARE(folder.read(), QByteArray("[General]\nwindowState=@ByteArray(w)\nmine=1\n"));
        }
        qunsetenv("XDG_CONFIG_DIRS");
    }

    void systemFolderOfNativeFormatIsUsed()
    {
        const SettingsFolder folder;
        QVERIFY(QDir().mkpath(folder.path("set/quillmoss")));
        QVERIFY(folder.write("[General]\n" + rowsLine(markedRows(3)), "set/quillmoss/pdx3.conf"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, folder.path("set"));
        QCOMPARE(storedParamList(*openSettings()), markedRows(3));
    }

    void readingAloneWritesNothing()
    {
        const SettingsFolder folder;
        openSettings();
        QCOMPARE(QDir(folder.path("quillmoss")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    }
};

QTEST_GUILESS_MAIN(SettingsFormatTest)
#include "SettingsFormatTest.moc"
