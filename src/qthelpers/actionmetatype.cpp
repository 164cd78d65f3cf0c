#include "qthelpers/actionmetatype_p.h"

#include <QByteArray>
#include <QMetaType>
#include <QObject>

namespace QObjectHelpers {
namespace Internal {

void registerActionPointerMetaType()
{
    // The application's own qRegisterMetaType<QAction*>() (or any moc code that
    // knows QAction) must still succeed afterwards. Qt accepts a second
    // registration of a name when size and the pointer-to-QObject flag agree, and
    // it takes over the meta-object of the later one when the flags differ. So
    // this registration deliberately leaves out WasDeclaredAsMetaType: the first
    // full registration then fills in QAction's meta-object.
    static const int s_nTypeId = [] {
        const QByteArray name = QByteArrayLiteral("QAction*");
        const int known = QMetaType::type(name);
        if (known != QMetaType::UnknownType)
            return known;
        return QMetaType::registerNormalizedType(
            name, QtMetaTypePrivate::QMetaTypeFunctionHelper<QObject*>::Destruct,
            QtMetaTypePrivate::QMetaTypeFunctionHelper<QObject*>::Construct, int(sizeof(QObject*)),
            QMetaType::MovableType | QMetaType::PointerToQObject, nullptr);
    }();
    Q_UNUSED(s_nTypeId)
}

} // namespace Internal
} // namespace QObjectHelpers
