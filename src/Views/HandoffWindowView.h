#pragma once

#include <functional>
#include <optional>
#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <QUrl>

#include "FixedRowsModel.h"
#include "Models/Briefing.h"

namespace corvellan {

class WebBrowser;

/// Where companies are to be found in the CRM.
struct CrmAddress {
    QString url;     ///< The CRM's own web address.
    QString portal;  ///< The portal's account number.

    /// The page of a company. Absent when there is none or its address can't be parsed.
    [[nodiscard]] std::optional<QUrl> companyPage(const std::optional<QString>& companyId) const;
};

/// View state of the window with a company's handoff note. Main thread.
class HandoffWindowView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the handoff window")

    /// Markdown.
    Q_PROPERTY(QString handoffNote READ handoffNote CONSTANT)
    Q_PROPERTY(bool hasCompanyPage READ hasCompanyPage CONSTANT)
    Q_PROPERTY(bool canClose READ canClose CONSTANT)
    /// Rows with "symbol" and "text".
    Q_PROPERTY(QAbstractItemModel* statistics READ statistics CONSTANT)
    Q_PROPERTY(bool hasStatistics READ hasStatistics CONSTANT)
    /// Why something could not be opened. Empty when all went well.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)

public:
    using Close = std::function<void()>;

    /// \param browser outlives the object.
    /// \param onClose absent for a view that can't be closed from inside.
    HandoffWindowView(HandoffResponse handoff, WebBrowser& browser, const CrmAddress& crm, std::optional<Close> onClose,
                      QObject* parent = nullptr);

    [[nodiscard]] const QString& handoffNote() const { return m_handoff.handoffNote; }
    [[nodiscard]] bool hasCompanyPage() const { return m_companyPage.has_value(); }
    [[nodiscard]] bool canClose() const { return m_onClose.has_value(); }
    [[nodiscard]] QAbstractItemModel* statistics() { return &m_statistics; }
    [[nodiscard]] bool hasStatistics() const { return m_statistics.rowCount() > 0; }
    [[nodiscard]] const QString& notice() const { return m_notice; }

    Q_INVOKABLE void openCompanyPage();
    /// Puts the note on the clipboard as plain text.
    Q_INVOKABLE void copyNote() const;
    /// Opens a mail or telephone link of the note.
    Q_INVOKABLE void openLink(const QString& address);
    /// Within this the view may go.
    Q_INVOKABLE void close();

Q_SIGNALS:
    void noticeChanged();

private:
    enum class Target { page, contact };

    void open(const QUrl& address, Target target);
    void setNotice(const QString& notice);

    HandoffResponse m_handoff;
    WebBrowser& m_browser;
    std::optional<QUrl> m_companyPage;
    std::optional<Close> m_onClose;
    FixedRowsModel m_statistics;
    QString m_notice;
};

}  // namespace corvellan
