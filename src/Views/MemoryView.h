#pragma once

#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <stop_token>

#include "Base/Tasks.h"

namespace corvellan {

/// View state of the memory note's screen: edits the file that `MemoryStore` reads. The file belongs to the user:
/// any editor may change it, and what its owner allows decides whether it can be written. Main thread.
class MemoryView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the panel")

    /// The text being edited. Written by the editor: what goes beyond the limit is cut off.
    Q_PROPERTY(QString memory READ memory WRITE setMemory NOTIFY memoryChanged)
    /// "1042/2000".
    Q_PROPERTY(QString counterText READ counterText NOTIFY memoryChanged)
    /// "gray", or "orange" close to the limit and beyond.
    Q_PROPERTY(QString counterColor READ counterColor NOTIFY memoryChanged)
    /// The badge "Saved" is on. It tells that the program tried.
    Q_PROPERTY(bool saved READ saved NOTIFY savedChanged)
    /// What there is to say about the file; empty for nothing. One that stands there and can't be read is kept until
    /// the user presses "Save".
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    /// The file's place in words for people.
    Q_PROPERTY(QString fileText READ fileText CONSTANT)

public:
    /// \param file the note's path.
    MemoryView(Clock& clock, QString file, QObject* parent = nullptr);
    ~MemoryView() override;

    [[nodiscard]] const QString& memory() const { return m_memory; }
    void setMemory(const QString& memory);
    [[nodiscard]] QString counterText() const;
    [[nodiscard]] QString counterColor() const;
    [[nodiscard]] bool saved() const { return m_saved; }
    [[nodiscard]] QString notice() const;
    [[nodiscard]] static QString fileText();

    /// The screen has appeared: starts anew with what the file holds now.
    Q_INVOKABLE void appear();
    /// Saves at once.
    Q_INVOKABLE void pressSave();

Q_SIGNALS:
    void memoryChanged();
    void savedChanged();
    void noticeChanged();

private:
    void load();
    /// Saves when nothing has changed for half a second.
    void debounceSave();
    void showSavedBadge();
    void save() const;
    /// False for a file that has become unreadable in the meantime: that one is kept, and said so.
    [[nodiscard]] bool maySaveUnasked();
    void change(const QString& memory);
    void setSaved(bool saved);
    void setIsFileKept(bool isKept);

    Clock& m_clock;
    QString m_file;
    QString m_memory;
    TaskSlot m_saveTask;
    bool m_saved = false;
    /// The file can't be read, and nobody has decided yet that it goes.
    bool m_isFileKept = false;
    /// What stands in the editor is not what the file held when it was read.
    bool m_isEdited = false;
    /// An edit is not in the file yet.
    bool m_isSavePending = false;
    /// Ends the badges' timers with the screen that they belong to.
    std::stop_source m_badges;
};

}  // namespace corvellan
