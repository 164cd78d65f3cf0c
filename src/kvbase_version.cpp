#include "kvbase_version.h"

namespace KvBase {

QString versionString()
{
    return QStringLiteral(KVBASE_VERSION_STRING);
}

} // namespace KvBase
