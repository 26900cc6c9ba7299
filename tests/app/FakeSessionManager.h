#pragma once

#include <QByteArray>
#include <QObject>

/// An X session manager for one client.
class FakeSessionManager : public QObject
{
    Q_OBJECT

public:
    FakeSessionManager();
    ~FakeSessionManager() override;

    /// Returns the value of SESSION_MANAGER for the client.
    QByteArray address() const;

    /// Makes the client save its state. With `isShutdown` the session ends afterwards, which die does.
    void save(bool isShutdown);
    void die();

signals:
    void registered();
    void saved();
};
