#pragma once

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// main of a test program with widgets, with a temporary home and settings folder.
#define PENDRIX_APPLICATION_TEST_MAIN(TestClass)                                                                       \
    int main(int argc, char *argv[])                                                                                   \
    {                                                                                                                  \
        const QTemporaryDir home;                                                                                      \
        if (!home.isValid())                                                                                           \
            return 1;                                                                                                  \
        qputenv("HOME", QFile::encodeName(home.path()));                                                               \
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath("settings")));                                      \
        QApplication application(argc, argv);                                                                          \
        TestClass test;                                                                                                \
        return QTest::qExec(&test, argc, argv);                                                                        \
    }
