#ifndef KVBASE_QTHELPERS_ACTIONMETATYPE_P_H
#define KVBASE_QTHELPERS_ACTIONMETATYPE_P_H

namespace QObjectHelpers {
namespace Internal {

// Queued signals need their argument types registered by name. KvBase does not
// link QtWidgets, so it registers "QAction*" itself, compatibly with the
// registration QtWidgets code makes later (see the source for how).
void registerActionPointerMetaType();

} // namespace Internal
} // namespace QObjectHelpers

#endif
