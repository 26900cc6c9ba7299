#include "export/Formats.h"

#include <algorithm>
#include <iterator>

const Format *formatOf(const QString &name)
{
    const auto *const found = std::find_if(std::begin(formats), std::end(formats), [&name](const Format &format) {
        return name.compare(QLatin1String(format.name), Qt::CaseInsensitive) == 0;
    });
    return found == std::end(formats) ? nullptr : found;
}

QString formatNames(unsigned features, const QString &prefix)
{
    QStringList names;
    for (const Format &format : formats) {
        if (features == 0 || (format.features & features) != 0)
            names.append(prefix + QLatin1String(format.name));
    }
    const QString last = names.takeLast();
    return names.isEmpty() ? last : names.join(QStringLiteral(", ")) + QStringLiteral(" or ") + last;
}
