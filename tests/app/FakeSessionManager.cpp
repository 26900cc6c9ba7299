#include "tests/app/FakeSessionManager.h"

#include <QSocketNotifier>

#include <functional>

#include <X11/SM/SMlib.h>

#include <cstdlib>

namespace {

FakeSessionManager *manager = nullptr;
SmsConn client = nullptr;
int listenerCount = 0;
IceListenObj *listeners = nullptr;

Status acceptClient(SmsConn connection, SmPointer /*data*/, unsigned long *mask, SmsCallbacks *callbacks,
                    char ** /*why*/)
{
    client = connection;
    // Those that Qt programs cause.
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask;
    callbacks->register_client.callback = [](SmsConn c, SmPointer, char *previousId) -> Status {
        std::free(previousId);
        char id[] = "1";
        SmsRegisterClientReply(c, id);
        emit manager->registered();
        return 1;
    };
    callbacks->interact_request.callback = [](SmsConn c, SmPointer, int) { SmsInteract(c); };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks->save_yourself_done.callback = [](SmsConn, SmPointer, Bool) { emit manager->saved(); };
    callbacks->close_connection.callback = [](SmsConn, SmPointer, int, char **) {};
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char **) {};
    callbacks->set_properties.callback = [](SmsConn, SmPointer, int count, SmProp **properties) {
        for (int i = 0; i < count; ++i)
            SmFreeProperty(properties[i]);
        std::free(properties);
    };
    return 1;
}

/// Calls `action` whenever `file` is readable. `parent` owns the notifier.
void whenReadable(int file, QObject *parent, const std::function<void(QSocketNotifier *)> &action)
{
    auto *notifier = new QSocketNotifier(file, QSocketNotifier::Read, parent);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, action] { action(notifier); });
}

} // namespace

FakeSessionManager::FakeSessionManager()
{
    manager = this;
    IceSetIOErrorHandler([](IceConn) {}); // the default one exits
    char error[256] = {};
    SmsInitialize(
        "fake", "1", acceptClient, nullptr, [](char *) -> Bool { return 1; }, sizeof error, error);
    IceListenForConnections(&listenerCount, &listeners, sizeof error, error);
    for (int i = 0; i < listenerCount; ++i) {
        IceListenObj listener = listeners[i];
        IceSetHostBasedAuthProc(listener, [](char *) -> Bool { return 1; });
        whenReadable(IceGetListenConnectionNumber(listener), this, [this, listener](QSocketNotifier *) {
            IceAcceptStatus status = IceAcceptFailure;
            IceConn connection = IceAcceptConnection(listener, &status);
            if (status != IceAcceptSuccess)
                return;
            whenReadable(IceConnectionNumber(connection), this, [connection](QSocketNotifier *notifier) {
                if (IceProcessMessages(connection, nullptr, nullptr) == IceProcessMessagesSuccess)
                    return;
                notifier->setEnabled(false); // the client disconnected
                client = nullptr;
            });
        });
    }
}

FakeSessionManager::~FakeSessionManager()
{
    IceFreeListenObjs(listenerCount, listeners);
}

QByteArray FakeSessionManager::address() const
{
    char *ids = IceComposeNetworkIdList(listenerCount, listeners);
    QByteArray copy(ids);
    std::free(ids);
    return copy;
}

void FakeSessionManager::save(bool isShutdown)
{
    SmsSaveYourself(client, SmSaveBoth, isShutdown, SmInteractStyleAny, 0);
    IceFlush(SmsGetIceConnection(client));
}

void FakeSessionManager::die()
{
    SmsDie(client);
    IceFlush(SmsGetIceConnection(client));
}
