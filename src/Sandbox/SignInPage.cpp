#include "SignInPage.h"

namespace corvellan::sandbox::pages {

using namespace Qt::StringLiterals;

namespace {

QByteArray page(const QString& title, const QString& content) {
    return u"<!DOCTYPE html>\n"
           "<html lang=\"en\">\n"
           "<head>\n"
           "<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n"
           "<title>%1</title>\n"
           "<style>\n"
           "body { font: 1rem sans-serif; max-width: 26rem; margin: 4rem auto; padding: 0 1rem; line-height: 1.5; "
           "color: #222; background: #fff }\n"
           "select, button { font: inherit; padding: .5rem .8rem; margin: .3rem .3rem .3rem 0 }\n"
           "select { display: block; width: 100%; box-sizing: border-box }\n"
           ".note { color: #555; font-size: .9rem }\n"
           "</style>\n"
           "</head>\n"
           "<body>\n"
           "<main>\n"
           "<h1>%1</h1>\n"
           "%2"
           "</main>\n"
           "</body>\n"
           "</html>\n"_s.arg(title, content)
               .toUtf8();
}

}  // namespace

QByteArray signIn(const QString& action, const QString& ticket, const QString& clientId, const QStringList& users) {
    QString options;
    for (const auto& user : users)
        options += u"<option>%1</option>\n"_s.arg(user.toHtmlEscaped());
    return page(u"Sign in"_s,
                u"<p>%1 asks for access to your account.</p>\n"
                "<form method=\"post\" action=\"%2\">\n"
                "<input type=\"hidden\" name=\"ticket\" value=\"%3\">\n"
                "<label for=\"user\">Account</label>\n"
                "<select id=\"user\" name=\"user\">\n"
                "%4"
                "</select>\n"
                "<button type=\"submit\" name=\"decision\" value=\"allow\" autofocus>Sign in</button>\n"
                "<button type=\"submit\" name=\"decision\" value=\"deny\">Cancel</button>\n"
                "</form>\n"
                "<p class=\"note\">This is the sandbox: no password is asked for.</p>\n"_s.arg(
                    clientId.toHtmlEscaped(), action.toHtmlEscaped(), ticket.toHtmlEscaped(), options));
}

QByteArray problem(const QString& why) {
    return page(u"Sign-in is not possible"_s, u"<p>%1</p>\n"_s.arg(why.toHtmlEscaped()));
}

}  // namespace corvellan::sandbox::pages
