#pragma once

#include "Foundation/Config.h"
#include "Foundation/Files.h"
#include "Foundation/Log.h"
#include "Server/AccountFile.h"
#include "Server/ServerClient.h"
#include "Server/ServerConnection.h"
#include "Server/ServerError.h"
#include "Support/Await.h"
#include "Support/TemporaryHome.h"
#include "Support/VeskServer.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace vesk {

class NamedHost final : public Host {
public:
    std::optional<QString> platformIdentifier() const override { return QStringLiteral("an identifier"); }
    std::optional<QString> localizedName() const override { return QStringLiteral("workbench"); }
};

/// A server on a loopback port and a connection to it; settings and sign-in are fresh for every test.
class ServerTest : public testing::Test {
protected:
    ServerTest()
    {
        QFile::remove(Config::file());
        QFile::remove(AccountFile::path());
        Files::makeFolder(homeLogs());
    }

    ServerClient client() { return {connection, server.baseURL(), VeskServer::validToken()}; }

    /// The settings file names the server, as a person would have it.
    void pointSettingsAtServer()
    {
        Config config;
        config.serverURL = server.baseURL().toString();
        config.write();
    }

    static QString homeLogs() { return QFileInfo(Log::file()).path(); }
    static QByteArray log() { return logText(); }

    VeskServer server;
    NamedHost host;
    ServerConnection connection{host};
};

/// The error of type E with which the work ends; nothing when it succeeds. Other errors come through.
template <typename E, typename T>
std::optional<E> failure(Task<T> task)
{
    try {
        static_cast<void>(awaited(std::move(task)));
    } catch (const E &error) {
        return error;
    }
    return std::nullopt;
}

} // namespace vesk
