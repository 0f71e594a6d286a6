#include "KWinScript.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace corvellan {

namespace {

// With two windows of one title KWin adds a number to the caption of the second. Before Plasma 6 the list had
// another name; it is asked too, so that an old KWin answers that it can't.
constexpr char body[] = R"(
(function (pid, title, isHidden, service, path, interfaceName, token) {
    const windows = typeof workspace.windowList === "function" ? workspace.windowList() : workspace.clientList();
    const own = [];
    for (let i = 0; i < windows.length; ++i) {
        const caption = String(windows[i].caption);
        if (windows[i].pid === pid && (caption === title || caption.indexOf(title + " ") === 0))
            own.push(windows[i]);
    }
    let answer = "done";
    if (own.length === 0)
        answer = "missing";
    for (let i = 0; i < own.length && answer === "done"; ++i) {
        if (typeof own[i].excludeFromCapture !== "boolean") {
            answer = "unsupported";
        } else {
            own[i].excludeFromCapture = isHidden;
            if (own[i].excludeFromCapture !== isHidden)
                answer = "refused";
        }
    }
    callDBus(service, path, interfaceName, "report", token, answer);
}).apply(null, )";

}  // namespace

QByteArray kwinScript(const HidingRequest& request, const KWinReportAddress& report) {
    // JSON quotes whatever a text holds.
    const QJsonArray arguments{request.processId, request.windowTitle,  request.isHidden, report.service,
                               report.path,       report.interfaceName, report.token};
    return body + QJsonDocument{arguments}.toJson(QJsonDocument::Compact) + ");\n";
}

}  // namespace corvellan
