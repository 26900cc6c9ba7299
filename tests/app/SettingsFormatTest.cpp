// The settings file without a window: what is read from which text, and what a save changes.

#include "app/Settings.h"
#include "tests/support/FloatBits.h"
#include "tests/support/SampleSize.h"
#include "tests/support/SettingsText.h"

#include <QProcess>
#include <QtTest>

#include <memory>
#include <random>

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

/// Returns the text that plain QSettings writes.
QByteArray plainText(const QSettings::SettingsMap &values)
{
    const SettingsFolder folder;
    {
        QSettings plain(folder.path("plain.conf"), QSettings::NativeFormat);
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            plain.setValue(it.key(), it.value());
    }
    QFile file(folder.path("plain.conf"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray goodLine()
{
    return rowsLine(markedRows(3));
}

/// Returns the line of markedRows(7) as a save writes it.
QByteArray savedLine()
{
    return plainText({{"paramList", QVariant::fromValue(markedRows(7))}}).mid(qstrlen("[General]\n")).trimmed();
}

void addTextRow(const char *name, const QByteArray &text)
{
    QTest::newRow(name) << text;
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

    void bothSpellingsOfTheRowTypeAreRead()
    {
        for (const char *name : {"QVector<QVector<float> >", "QVector<QVector<float>>"}) {
            const QByteArray line = variantLine("paramList", userValue(name, streamed(markedRows(3))));
            QCOMPARE(rowsIn("[General]\n" + line), markedRows(3));
        }
    }

    void malformedListsAreIgnored_data()
    {
        QTest::addColumn<QByteArray>("content");
        Rows rows = markedRows(3);
        addTextRow("63 rows", streamed(rows.mid(1)));
        addTextRow("65 rows", streamed(rows + Rows{rows.first()}));
        addTextRow("no rows", streamed(Rows()));
        rows[63].removeLast();
        addTextRow("row of five", streamed(rows));
        rows[63] += QVector<float>{1.0F, 2.0F};
        addTextRow("row of seven", streamed(rows));
        addTextRow("empty rows", streamed(Rows(64)));
        addTextRow("nothing", {});
        addTextRow("a byte too many", streamed(markedRows(3)) + '\0');
        addTextRow("a byte too few", streamed(markedRows(3)).chopped(1));
        addTextRow("2^31 - 1 rows", streamed(0x7FFFFFFFU));
        addTextRow("2^32 - 1 rows", streamed(0xFFFFFFFFU) + QByteArray(1000, '\0'));
        addTextRow("row of 2^31 - 1", streamed(64U) + streamed(0x7FFFFFFFU) + QByteArray(1000, '\1'));
        addTextRow("row of 2^30", streamed(64U) + streamed(0x40000000U) + QByteArray(1000, '\1'));
    }

    void malformedListsAreIgnored()
    {
        QFETCH(QByteArray, content);
        QCOMPARE(rowsIn("[General]\n" + variantLine("paramList", userValue("QVector<QVector<float> >", content))),
                 Rows());
    }

    void valuesOfOtherTypesAreIgnored_data()
    {
        QTest::addColumn<QByteArray>("value");
        const auto variant = [](const char *name, const QByteArray &bytes) {
            addTextRow(name, "@Variant(" + escapedText(bytes) + ')');
        };
        for (const char *text : {"7", "text", "a, b", "@Invalid()", "@Size(3 4)", "@Variant(", "@Variant()",
                                 "@DateTime()", "@Strange(1)", "\\x", "\"open", ""})
            addTextRow(text, text);
        // Values that crash or hang Qt's parser or writer.
        variant("list of 2^31 - 1", streamed(9U) + streamed(0x7FFFFFFFU));
        variant("strings", streamed(11U) + streamed(0x7FFFFFFFU));
        variant("polygon", streamed(71U) + streamed(0x3FFFFFFFU) + QByteArray(100, '\0'));
        variant("named list", userValue("QVariantList", streamed(0x7FFFFFFFU)));
        variant("unknown type", userValue("NoSuchType", "1234"));
        QByteArray nested;
        for (int i = 0; i < 100000; ++i)
            nested += streamed(9U) + streamed(1U);
        variant("deeply nested lists", nested);
        const QByteArray list = escapedText(streamed(9U) + streamed(0x7FFFFFFFU)) + ')';
        addTextRow("in a list", "a, @Variant(" + list + ", b");
        addTextRow("quoted in part", "\"@Var\"iant(" + list);
        addTextRow("escaped", "\\x40Vari\\141nt(" + list);
        addTextRow("over two lines", "@Var\\\niant(" + list);
        addTextRow("over two lines with CR LF", "@Var\\\r\niant(" + list);
        addTextRow("quoted over two lines", "\"@Variant(\n" + list + '"');
        addTextRow("date of an unknown zone",
                   "@DateTime(" + escapedText(streamed(16U) + QByteArray(13, '\0') + '\3') + ')');
    }

    void valuesOfOtherTypesAreIgnored()
    {
        QFETCH(QByteArray, value);
        for (const char *key : {"colsWidth", "geometry", "foreign", "windowState"}) {
            const SettingsFolder folder;
            QVERIFY(folder.write("[General]\n" + QByteArray(key) + '=' + value + '\n' + goodLine()));
            const auto settings = openSettings();
            QVERIFY(!settings->contains(key));
            QCOMPARE(storedParamList(*settings), markedRows(3));
        }
        QCOMPARE(rowsIn("[General]\nparamList=" + value + '\n'), Rows());
    }

    void onlyTheGeneralSectionIsRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("isRead");
        const auto row = [](const char *name, const QByteArray &text, bool isRead) {
            QTest::newRow(name) << QByteArray(text).replace("ROWS", goodLine().trimmed()) << isRead;
        };
        row("general", "[General]\nROWS\n", true);
        row("before any section", "ROWS\n[Other]\na=1\n", true);
        row("case and blanks", "\n [ gEnErAl ] \n\t ROWS\n", true);
        row("second general section", "[General]\na=1\n[Other]\n[General]\nROWS\n", true);
        row("other section", "[Other]\nROWS\n", false);
        row("quoted section", "[%General]\nROWS\n", false);
        row("no line end", "[General]\nROWS", true);
        row("carriage returns", "[General]\ra=1\rROWS\rb=2\r", true);
        row("damage and carriage returns",
            "[General]\rgeometry=@Variant(" + escapedText(streamed(9U) + streamed(0x7FFFFFFFU)) + ")\rROWS\r", true);
        row("both line ends", "[General]\r\na=1\r\nROWS\r\n", true);
        row("byte order mark", "\xEF\xBB\xBF[General]\nROWS\n", true);
        row("byte order mark and other section", "\xEF\xBB\xBF[Other]\nROWS\n", false);
        row("comment", "; \"\n[General]\nROWS ; \"\n", true);
        row("commented out", "[General]\n;ROWS\n", false);
        row("two words as a key", "[General]\nparamList ROWS\n", false);
        row("longer key", "[General]\nxROWS\n", false);
        row("in a quoted foreign value", "[General]\nforeign=\"\nROWS\n\"\n", false);
        row("behind an escaped line end", "[General]\nforeign=1\\\nROWS\n", false);
        row("behind a quote that never closes", "[General]\nforeign=\"\nROWS\n", true);
        row("last of two", "[General]\n" + rowsLine(markedRows(9)) + "ROWS\n", true);
        row("before a malformed one", "[General]\nROWS\nparamList=7\n", true);
    }

    void onlyTheGeneralSectionIsRead()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, isRead);
        QCOMPARE(rowsIn(text), isRead ? markedRows(3) : Rows());
    }

    void damageToAnyByteIsHarmless()
    {
        const QByteArray good = plainText({{"paramList", QVariant::fromValue(markedRows(3))},
                                           {"colsWidth", QVariant::fromValue(QVector<int>(6, 50))},
                                           {"geometry", QByteArray("a,b")},
                                           {"windowState", QByteArray("c=d")}});
        const int rowsStart = good.indexOf("paramList");
        const int rowsEnd = good.indexOf('\n', rowsStart);
        const int step = sampleSize(37, 1);
        for (int at = 0; at < good.size(); at += step) {
            QCOMPARE(rowsIn(good.left(at)), at >= rowsEnd ? markedRows(3) : Rows());
            for (const char damage : {'\x01', '\x10', '\x7F', '\xFF', '"', '\\'}) {
                QByteArray text = good;
                text[at] = static_cast<char>(damage == '"' || damage == '\\' ? damage : text.at(at) ^ damage);
                const Rows rows = rowsIn(text);
                QVERIFY2(rows.isEmpty() || rows.size() == 64, QByteArray::number(at));
                // Damage elsewhere costs no rows, unless it breaks the line end before them or the section's name.
                const bool isElsewhere = (at > 9 && at < rowsStart - 2) || at > rowsEnd;
                if (isElsewhere && text.at(at) != '\\' && !QByteArray("\r\n").contains(good.at(at)))
                    QVERIFY2(rows == markedRows(3), QByteArray::number(at) + ' ' + QByteArray::number(damage));
            }
        }
    }

    void noiseIsIgnoredAndKept_data()
    {
        QTest::addColumn<QByteArray>("text");
        addTextRow("zeros", QByteArray(100000, '\0'));
        addTextRow("one line", QByteArray(1000000, '='));
        addTextRow("brackets", QByteArray(100000, '['));
        addTextRow("quotes", QByteArray("a=\"\n").repeated(100001));
        addTextRow("short lines", QByteArray("a\n").repeated(sampleSize(100000, 25000000)));
        QByteArray bytes(sampleSize(1000000, 50000000), Qt::Uninitialized);
        std::mt19937 random(1);
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        addTextRow("random", bytes);
    }

    void noiseIsIgnoredAndKept()
    {
        QFETCH(QByteArray, text);
        QCOMPARE(rowsIn(text), Rows());
        QCOMPARE(saved(text).replace("[General]\n" + savedLine() + '\n', ""), text);
    }

    // ---- Saving ----

    void aNewFileIsTheOneThatQtWrites()
    {
        std::mt19937 random(99);
        Rows rows(64, QVector<float>(6));
        for (QVector<float> &row : rows) {
            for (float &value : row)
                value = anyFloat(random);
        }
        QByteArray allBytes;
        for (int i = 0; i < 256 * 256; i += 257)
            allBytes += QByteArray(1, static_cast<char>(i)) + "0a\\\"" + static_cast<char>(i / 256);
        const QSettings::SettingsMap values = {{"paramList", QVariant::fromValue(rows)},
                                               {"colsWidth", QVariant::fromValue(QVector<int>{1, -1, 41})},
                                               {"geometry", allBytes},
                                               {"windowState", QByteArray("plain \x0B\x0C")}};
        const SettingsFolder folder;
        {
            const auto settings = openSettings();
            for (auto it = values.cbegin(); it != values.cend(); ++it)
                settings->setValue(it.key(), it.value());
        }
        const QByteArray text = folder.read();
        const SettingsFolder copy;
        QVERIFY(copy.write(text));
        const auto settings = openSettings();
        QCOMPARE(streamed(storedParamList(*settings)), streamed(rows));
        for (const char *key : {"colsWidth", "geometry", "windowState"})
            QCOMPARE(streamed(settings->value(key)), streamed(values.value(key)));
        QCOMPARE(text, plainText(values));
    }

    void aSaveKeepsForeignBytes_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after"); // empty: as before
        const auto row = [](const char *name, const QByteArray &before, const QByteArray &after = {}) {
            QByteArray expected = after.isEmpty() ? before : after;
            QTest::newRow(name) << QByteArray(before).replace("ROWS", goodLine().trimmed())
                                << expected.replace("ROWS", savedLine());
        };
        row("empty file", "", "[General]\nROWS\n");
        row("only foreign", "[x]\na=1\n", "[General]\nROWS\n[x]\na=1\n");
        row("byte order mark", "\xEF\xBB\xBF[x]\na=1\n", "\xEF\xBB\xBF[General]\nROWS\n[x]\na=1\n");
        row("general without rows", "[x]\n[General]\nb=2\n", "[x]\n[General]\nROWS\nb=2\n");
        row("general without line end", "a=1\n[General]", "a=1\n[General]\nROWS");
        row("replaced in place", "[General]\nz=1\nROWS\na= @Invalid() ; c\n[Other]\nparamList=7\n");
        row("carriage returns", "[General]\rz=\"\n\"\rROWS\ra=1\r");
        row("both line ends", "[General]\r\nROWS\r\n\r\na=@Variant(\\0)\r\n");
        row("malformed rows over two lines", "[General]\nparamList=\"x\ny\"\na=1\n", "[General]\nROWS\na=1\n");
        row("rows twice", "[General]\nROWS\na=1\nROWS\n", "[General]\nROWS\na=1\n\n");
        row("rows before any section", "ROWS\n[General]\n", "ROWS\n[General]\n");
        row("quote that never closes", "[General]\na=\"\nROWS\nb=1");
        row("comments", "; \"\n[General] ; g\nROWS; \"\n");
    }

    void aSaveKeepsForeignBytes()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        QCOMPARE(saved(before), after);
    }

    void alternatesWithPlainQSettings()
    {
        const SettingsFolder folder;
        QVERIFY(folder.write("[General]\nmine=\"a, b\"\n[group]\nnote=\"round; 0\"\n" + goodLine()));
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
            const int previous = 10 * (round - 1);
            const QByteArray note = round == 1 ? "round; 0" : "round; " + QByteArray::number(round - 1);
            QCOMPARE(plain.readAllStandardOutput(),
                     QByteArray::number(previous) + ' ' + QByteArray::number(round - 1) + ' ' + note);

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
            QVERIFY(folder.write("[General]\nforeign=1\n" + bomb + goodLine(), name));
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

    void systemFolderOfTheNativeFormatIsUsed()
    {
        const SettingsFolder folder;
        QVERIFY(QDir().mkpath(folder.path("set/quillmoss")) &&
                folder.write("[General]\n" + goodLine(), "set/quillmoss/pdx3.conf"));
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
