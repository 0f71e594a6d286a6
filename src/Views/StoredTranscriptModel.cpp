#include "StoredTranscriptModel.h"

#include <array>

#include "Theme.h"

namespace corvellan {

using namespace Qt::StringLiterals;

const StoredTranscriptModel::Look& StoredTranscriptModel::look(TranscriptRole role) {
    static const std::array looks{
        Look{u"R"_s, ColorRole::blue, {}, 0.7, u"You"_s},
        Look{u"C"_s, ColorRole::green, {}, 0.6, u"Customer"_s},
        Look{u"AI"_s, ColorRole::cyan, colorName(ColorRole::cyan), 0.7, u"Coach"_s},
        Look{u"?"_s, ColorRole::gray, {}, 0.4, u"Unknown speaker"_s},
    };
    return looks.at(static_cast<std::size_t>(role));
}

void StoredTranscriptModel::assign(const QStringList& lines) {
    if (m_lines == lines)
        return;
    beginResetModel();
    m_lines = lines;
    endResetModel();
}

int StoredTranscriptModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

QVariant StoredTranscriptModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ParsedLine line = parseTranscriptLine(m_lines[index.row()]);
    const Look& look = StoredTranscriptModel::look(line.role);
    switch (role) {
    case tagRole: return look.tag;
    case tagColorRole: return colorName(look.tagColor);
    case textRole: return line.text;
    case textColorRole: return look.textColor;
    case textOpacityRole: return look.textOpacity;
    case spokenRole: return look.spoken + u": "_s + line.text;
    default: return {};
    }
}

QHash<int, QByteArray> StoredTranscriptModel::roleNames() const {
    return {{tagRole, "tag"},
            {tagColorRole, "tagColor"},
            {textRole, "line"},
            {textColorRole, "lineColor"},
            {textOpacityRole, "lineOpacity"},
            {spokenRole, "spoken"}};
}

}  // namespace corvellan
