#include "tests/app/FakeSessionManager.h"

#include <QSocketNotifier>

#include <functional>

#include <X11/SM/SMlib.h>

#include <cstdlib>
#include <cstring>

namespace {

FakeSessionManager *manager = nullptr;
SmsConn client = nullptr;
int listenerCount = 0;
IceListenObj *listeners = nullptr;

Status registerClient(SmsConn connection, SmPointer /*data*/, char *previousId)
{
    std::free(previousId);
    char id[] = "1";
    SmsRegisterClientReply(connection, id);
    emit manager->registered();
    return 1;
}

void interact(SmsConn connection, SmPointer /*data*/, int /*dialog*/)
{
    SmsInteract(connection);
}

void finishSave(SmsConn /*connection*/, SmPointer /*data*/, Bool /*isSuccess*/)
{
    emit manager->saved();
}

void freeProperties(SmsConn /*connection*/, SmPointer /*data*/, int count, SmProp **properties)
{
    for (int i = 0; i < count; ++i)
        SmFreeProperty(properties[i]);
    std::free(properties);
}

Status acceptClient(SmsConn connection, SmPointer /*data*/, unsigned long *mask, SmsCallbacks *callbacks,
                    char ** /*why*/)
{
    client = connection;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    std::memset(callbacks, 0, sizeof *callbacks);
    callbacks->register_client.callback = registerClient;
    callbacks->interact_request.callback = interact;
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {};
    callbacks->save_yourself_phase2_request.callback = [](SmsConn c, SmPointer) { SmsSaveYourselfPhase2(c); };
    callbacks->save_yourself_done.callback = finishSave;
    callbacks->close_connection.callback = [](SmsConn, SmPointer, int, char **) {};
    callbacks->set_properties.callback = freeProperties;
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char **) {};
    callbacks->get_properties.callback = [](SmsConn, SmPointer) {};
    return 1;
}

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
                notifier->setEnabled(false); // the client has gone
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
    const QByteArray copy(ids);
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
