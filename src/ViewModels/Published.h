#pragma once

// Fields that screens observe. moc expands macros, so that one line a field declares the property, its
// getter, its signal and its storage, and the header of the class lists its state once.

/// A field with a setter that notifies on a real change only.
/// Use: CORVELLAN_PUBLISHED(QString, statusText, setStatusText) = u"Ready"_s;
#define CORVELLAN_PUBLISHED(type, name, setter) \
    CORVELLAN_PUBLISHED_READ_ONLY(type, name)   \
                                                \
public:                                         \
    void setter(type value) {                   \
        if (m_##name == value)                  \
            return;                             \
        m_##name = std::move(value);            \
        Q_EMIT name##Changed();                 \
    }                                           \
                                                \
private:                                        \
    type m_##name

/// As above without a setter: the class writes one with rules of its own.
#define CORVELLAN_PUBLISHED_FIELD(type, name) \
    CORVELLAN_PUBLISHED_READ_ONLY(type, name) \
                                              \
private:                                      \
    type m_##name

#define CORVELLAN_PUBLISHED_READ_ONLY(type, name) \
public:                                           \
    Q_SIGNAL void name##Changed();                \
    [[nodiscard]] type const& name() const {      \
        return m_##name;                          \
    }                                             \
                                                  \
private:                                          \
    Q_PROPERTY(type name READ name NOTIFY name##Changed)
