// The program pendrix3d-export.

#include "export/Export.h"
#include "export/ExportError.h"
#include "export/Process.h"

#include <QCoreApplication>

#include <new>

int main(int argc, char *argv[])
{
    prepareProcess();
    const QCoreApplication application(argc, argv);
    try {
        const Options options = parseOptions(argumentsOf(argc, argv));
        if (options.message.isEmpty())
            exportCurves(options);
        else
            printMessage(options.message);
        return 0;
    } catch (const ExportError &error) {
        printError(error);
        return error.exitStatus;
    } catch (const std::bad_alloc &) {
        printError({ExportError::failure, QStringLiteral("cannot export"), QStringLiteral("out of memory")});
        return ExportError::failure;
    }
}
