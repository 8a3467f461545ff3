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
    // Whoever comes last frees the slot: not before the other thread is seen to be through with it.
    slot->ref();
    __tsan_release(&handedOver);
    const bool queued =
        __real__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
            receiver, slot, type, result);
    __tsan_acquire(&handedOver);
    slot->destroyIfLastRef();
    return queued;
}

#endif

namespace monkey {

bool Application::notify(QObject *receiver, QEvent *event) {
#ifdef __SANITIZE_THREAD__
    const bool call = event->type() == QEvent::MetaCall;
    if (call) __tsan_acquire(&handedOver);
    const bool taken = QApplication::notify(receiver, event);
    if (call) __tsan_release(&handedOver);
    return taken;
#else
    return QApplication::notify(receiver, event);
#endif
}

}  // namespace monkey
