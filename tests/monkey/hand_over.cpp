#include "monkey/hand_over.h"

#include <QEvent>

#ifdef __SANITIZE_THREAD__

extern "C" void __tsan_acquire(void *place);
extern "C" void __tsan_release(void *place);

namespace {
char handedOver;  // only its address matters
}

// The linker leads QMetaObject::invokeMethodImpl here, and its __real_ name to Qt's own.
extern "C" bool
__real__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
    QObject *receiver, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result);
extern "C" bool
__wrap__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
    QObject *receiver, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result) {
    slot->ref();  // never freed: which thread comes last is settled by a count of Qt's that isn't seen either
    __tsan_release(&handedOver);
    return __real__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
        receiver, slot, type, result);
}

#endif

namespace monkey {

bool Application::notify(QObject *receiver, QEvent *event) {
#ifdef __SANITIZE_THREAD__
    if (event->type() == QEvent::MetaCall) __tsan_acquire(&handedOver);
#endif
    return QApplication::notify(receiver, event);
}

}  // namespace monkey
