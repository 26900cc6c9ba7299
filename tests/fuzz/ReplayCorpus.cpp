// main of a program that runs a fuzzer's entry point on every file in the folders given as arguments.

#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>
#include <iostream>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int main(int argc, char *argv[])
{
    LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir folder(QFile::decodeName(argv[i]));
        const QStringList names = folder.entryList(QDir::Files);
        for (const QString &name : names) {
            std::cout << qPrintable(name) << std::endl; // a crash belongs to the last one
            QFile file(folder.filePath(name));
            if (!file.open(QIODevice::ReadOnly))
                return 1;
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++count;
        }
    }
    return count > 0 ? 0 : 1;
}
