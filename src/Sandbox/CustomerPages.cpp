#include "CustomerPages.h"

#include <QHttpServer>
#include <QHttpServerResponse>

#include "CustomerBook.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

namespace {

using Status = QHttpServerResponse::StatusCode;

QHttpServerResponse page(const QString& title, const QString& body, Status status = Status::Ok) {
    const QString text =
        u"<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>%1</title></head>\n"
        u"<body>\n<h1>%1</h1>\n<p>This is the sandbox.</p>\n%2</body>\n</html>\n"_s;
    // In one go: a text may hold "%1" itself.
    QHttpServerResponse response{"text/html; charset=utf-8", text.arg(title.toHtmlEscaped(), body).toUtf8(), status};
    response.addHeader("Content-Security-Policy", "default-src 'none'");
    return response;
}

QHttpServerResponse customerPage(const Customer* customer) {
    if (!customer)
        return page(u"No such customer"_s, {}, Status::NotFound);
    QString contacts;
    for (const auto& contact : customer->brief.value(u"contacts"_s).toArray())
        contacts += u"<li>"_s +
                    u"%1 %2, %3"_s
                        .arg(contact[u"firstname"_s].toString(), contact[u"lastname"_s].toString(),
                             contact[u"email"_s].toString())
                        .toHtmlEscaped() +
                    u"</li>\n"_s;
    return page(customer->name, contacts.isEmpty() ? QString{} : u"<ul>\n"_s + contacts + u"</ul>\n"_s);
}

}  // namespace

void addCustomerPages(QHttpServer& http, const CustomerBook& customers) {
    const auto get = QHttpServerRequest::Method::Get;
    const auto byHubspotId = [&customers](const QString& number) {
        return customerPage(customers.find(number, {}, {}));
    };
    http.route(u"/crm/<arg>"_s, get, [&customers](const QString& number) {
        bool isNumber = false;
        const qint64 crmId = number.toLongLong(&isNumber);
        return customerPage(isNumber ? customers.find({}, crmId, {}) : nullptr);
    });
    http.route(u"/crm/company/<arg>"_s, get, byHubspotId);
    http.route(u"/crm/contacts/<arg>/company/<arg>"_s, get,
               [byHubspotId](const QString& /*portal*/, const QString& number) { return byHubspotId(number); });
    http.route(u"/extension"_s, get, [] {
        return page(u"The browser extension"_s,
                    u"<p>There is none to install here. Play it from a shell:</p>\n"
                    u"<pre>corvellan-sandbox extension call-start --company \"Halden Freight\"</pre>\n"_s);
    });
}

}  // namespace corvellan::sandbox
