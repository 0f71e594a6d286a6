#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include "TcpClient.h"
#include "TestLoop.h"

namespace corvellan::test {

/// One HTTP answer as it came, for tests that look at servers with the eyes of a browser.
struct PlainAnswer {
    int status = 0;                         ///< 0 when no whole answer came.
    QHash<QByteArray, QByteArray> headers;  ///< Names in lower case.
    QByteArray body;
};

/// Sends these bytes and spins the main loop until an answer to them is there. Follows nothing.
inline PlainAnswer plainExchange(TcpClient& client, const QByteArray& request) {
    client.send(request);
    PlainAnswer answer;
    spinUntil([&] {
        const QByteArray& bytes = client.received();
        const qsizetype headEnd = bytes.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return client.isEnded();
        const auto lines = bytes.first(headEnd).split('\n');
        answer.headers.clear();
        for (const auto& line : lines.sliced(1))
            answer.headers.insert(line.first(line.indexOf(':')).toLower(),
                                  line.sliced(line.indexOf(':') + 1).trimmed());
        const qsizetype length = answer.headers.value("content-length").toLongLong();
        if (bytes.size() - headEnd - 4 < length)
            return client.isEnded();
        answer.status = lines.first().split(' ').value(1).toInt();
        answer.body = bytes.sliced(headEnd + 4, length);
        return true;
    });
    return answer;
}

/// Sends one request over a bare socket, as `plainExchange` does.
inline PlainAnswer plainHttp(quint16 port, const QByteArray& method, const QByteArray& target,
                             const QByteArray& body = {},
                             const QByteArray& contentType = "application/x-www-form-urlencoded") {
    TcpClient client{port};
    QByteArray request = method + ' ' + target + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port) + "\r\n";
    if (method == "POST")
        request += "Content-Type: " + contentType + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n";
    return plainExchange(client, request + "\r\n" + body);
}

}  // namespace corvellan::test
