// Prints the length in milliseconds that TagLib gives for each path, one line a path; 0 where it gives none.

#include <taglib/fileref.h>

#include <iostream>

int main(int count, char** words) {
    for (int index = 1; index < count; ++index) {
        const TagLib::FileRef file{words[index], true, TagLib::AudioProperties::Accurate};
        std::cout << (file.audioProperties() != nullptr ? file.audioProperties()->lengthInMilliseconds() : 0)
                  << '\n';
    }
}
