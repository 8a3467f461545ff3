// Tells the thread sanitizer what it can't see in an uninstrumented Qt: a call that one thread queues for another
// happens ahead of its being carried out there. Each call has an address of its own, so that none orders another.
#ifdef __SANITIZE_THREAD__

#include <QObject>

extern "C" void __tsan_acquire(void *place);
extern "C" void __tsan_release(void *place);

namespace {

// Stands for a call while Qt has it. Never freed, nor the call itself: which thread comes last is settled by a count of
// Qt's that isn't seen either.
struct HandedOver : QtPrivate::QSlotObjectBase {
    explicit HandedOver(QtPrivate::QSlotObjectBase *slot) : QSlotObjectBase(serve), call(slot) { call->ref(); }

    static void serve(int operation, QSlotObjectBase *self, QObject *receiver, void **arguments, bool *same) {
        auto *const it = static_cast<HandedOver *>(self);
        if (operation == Compare) *same = it->call->compare(arguments);
        if (operation != Call) return;
        __tsan_acquire(it);
        it->call->call(receiver, arguments);
    }

    QtPrivate::QSlotObjectBase *const call;
};

}  // namespace

// The linker leads QMetaObject::invokeMethodImpl here, and its __real_ name to Qt's own.
extern "C" bool
__real__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
    QObject *receiver, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result);
extern "C" bool
__wrap__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
    QObject *receiver, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type, void *result) {
    auto *const call = new HandedOver(slot);
    call->ref();
    __tsan_release(call);
    return __real__ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv(
        receiver, call, type, result);
}

#endif
