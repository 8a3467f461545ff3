// The one adapter between Qt's virtual handlers and plain functions.
#pragma once

#include <QEvent>
#include <QWidget>

namespace numalink {

class EventHook : public QObject {
public:
    // True keeps the event from the widget. Lives as long as the widget.
    using Handler = bool (*)(QWidget *widget, QEvent *event);
    EventHook(QWidget *widget, Handler which) : QObject(widget), handler(which) { widget->installEventFilter(this); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override {
        return handler(static_cast<QWidget *>(watched), event) || QObject::eventFilter(watched, event);
    }

private:
    Handler handler;
};

inline void hookEvents(QWidget *widget, EventHook::Handler handler) {
    new EventHook(widget, handler);  // owned by the widget
}

}  // namespace numalink
