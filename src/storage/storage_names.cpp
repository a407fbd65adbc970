#include "storage/storage_names.h"

#include <algorithm>

bool nume_fisier_valid(const QString &name)
{
    static constexpr QStringView kForbidden = u"\"*/?\\|:<>";
    return std::none_of(name.cbegin(), name.cend(), [](QChar c) { return kForbidden.contains(c); });
}

QString archiveName(const QString &date, const QString &storageName)
{
    return QStringLiteral("arh_%1_%2").arg(date, storageName);
}

void adauga_extensie_mdb(std::array<QString, 4> &names)
{
    const QLatin1String extension(".mdb");
    for (QString &name : names)
        name = name.remove(extension) + extension;
}
