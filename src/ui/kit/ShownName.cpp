#include "ui/kit/ShownName.h"

namespace velmora {

QString shownName(std::string_view name) {
    QString text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    for (QChar& letter : text) {
        if (letter.category() == QChar::Other_Control) {
            letter = QChar::ReplacementCharacter;
        }
    }
    return text;
}

} // namespace velmora
