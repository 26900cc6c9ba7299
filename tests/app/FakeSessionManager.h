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

    /// Requests that the client saves its state. With `isShutdown` the session ends afterwards, by `die`.
    void save(bool isShutdown);
    void die();

signals:
    void registered();
    void saved();
};
