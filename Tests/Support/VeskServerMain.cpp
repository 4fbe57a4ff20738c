// The loopback server as a program, for trying the command line by hand: prints the address for "serverURL"
// in config.json and a token for account.json, then serves until it is ended.

#include "Support/VeskServer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

vesk::HttpAnswer failure(const QCommandLineParser &parser)
{
    QJsonObject body;
    for (const QString &key : {u"error"_s, u"message"_s, u"raw"_s}) {
        if (parser.isSet(key)) {
            body.insert(key, parser.value(key));
        }
    }
    return {parser.value(u"fail"_s).toInt(), QJsonDocument(body).toJson(QJsonDocument::Compact), {}};
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Vesk's server on a loopback port, for tests by hand."_s);
    parser.addHelpOption();
    parser.addOptions({
        {u"delay"_s, u"Wait before every answer."_s, u"ms"_s},
        {u"fail"_s, u"Answer everything with this status."_s, u"status"_s},
        {u"error"_s, u"The failure's code."_s, u"code"_s},
        {u"message"_s, u"The failure's sentence."_s, u"text"_s},
        {u"raw"_s, u"The failure's diagnostic text."_s, u"text"_s},
    });
    parser.process(application);

    vesk::VeskServer server;
    vesk::Script script;
    script.delay = std::chrono::milliseconds(parser.value(u"delay"_s).toInt());
    if (parser.isSet(u"fail"_s)) {
        script.answer = failure(parser);
    }
    server.scriptEverything(script);
    QObject::connect(&server, &vesk::VeskServer::received, [](const vesk::ReceivedRequest &request) {
        std::fprintf(stderr, "%s %s, %lld bytes\n", request.method.constData(), request.target.constData(),
                     static_cast<long long>(request.body.size()));
    });
    std::printf("%s\n%s\n", qPrintable(server.baseURL().toString()),
                qPrintable(vesk::VeskServer::validToken()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
