#pragma once

#include "ModelFailure.h"
#include "ModelService.h"

#include <QByteArray>
#include <QByteArrayView>

#include <atomic>
#include <functional>
#include <memory>
#include <variant>

namespace httplib {
class ClientImpl;
}

/// One request to a model, whose answer is handed over as it arrives.
class ModelConnection
{
public:
    enum class BodyEnd {
        /// The transfer itself tells that it is whole.
        Told,
        /// The connection was closed, which is the end or a fault.
        Closed,
        /// `receive` wanted no more, or the request was stopped.
        Abandoned,
    };

    explicit ModelConnection(const ModelService &service);
    ~ModelConnection();
    Q_DISABLE_COPY_MOVE(ModelConnection)

    /// Posts `body` as JSON and calls `receive` with every piece of the answer until it returns
    /// false. Returns when there is no more, or why there is none. To be called once.
    std::variant<BodyEnd, ModelFailure> post(const QByteArray &body,
                                             const std::function<bool(QByteArrayView)> &receive);

    /// Makes `post` end soon, from another thread. A connection just being opened is not heard by
    /// the library: call it again until `post` has returned.
    void stop();

private:
    ModelService m_service;
    std::unique_ptr<httplib::ClientImpl> m_client;
    std::atomic<bool> m_isStopped = false;
};
