// A consumer in C++20, where the compiler also weighs the reversed comparison: the forms that
// qova/attributes.h calls quiet are quiet (warnings are errors here), and ask the object it says.

#include <cstdio>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

static_assert(__cplusplus == 202002L, "this consumer is to be compiled as C++20");

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "not so: %s\n", what);
        ++failures;
    }
}

// Remembers the object that was asked last.
class Asked : public QOVA_AudioAttribute {
public:
    bool operator==(const QOVA_MediaAttribute& other) const override {
        last = this;
        return QOVA_AudioAttribute::operator==(other);
    }

    static const QOVA_MediaAttribute* last;
};

const QOVA_MediaAttribute* Asked::last = nullptr;

void attributes() {
    const Asked left;
    const Asked right;
    const QOVA_MediaAttribute& left_base = left;
    const QOVA_MediaAttribute& right_base = right;

    static_cast<void>(left.operator==(right));
    expect(Asked::last == &left, "a.operator==(b) asks a");
    static_cast<void>(left_base.operator==(right));
    expect(Asked::last == &left, "a.operator==(b) asks a, of the base too");
    Asked::last = nullptr;
    static_cast<void>(left_base == right_base);
    expect(Asked::last == &left, "a == b of two references to the base asks a");
    static_cast<void>(left_base == right);
    expect(Asked::last == &right, "base == derived asks the derived object on the right");

    const QOVA_AudioAttribute audio;
    const QOVA_AudioAttribute other_audio;
    const QOVA_MediaAttribute& audio_base = audio;
    const QOVA_MediaAttribute& other_audio_base = other_audio;
    expect(audio.operator==(other_audio), "equal attributes are equal by name");
    expect(audio_base == other_audio_base, "equal attributes are equal as references to the base");
    expect(!(audio_base == left_base), "an audio attribute has no equal of a derived class");
    expect(left_base == audio_base, "an object that asks for an audio attribute finds one");
}

// None of these has a base that declares another comparison, so the plain form will do.
void other_classes() {
    const QOVA_Media media;
    const QOVA_Media other_media;
    expect(media == media, "a media equals itself");
    expect(media != other_media, "a media with other parameter objects is another");
    const QOVA_Crypto crypto;
    const QOVA_Crypto other_crypto;
    expect(crypto == other_crypto, "empty crypto lines are equal");
    QOVA_Capability capability;
    const QOVA_Capability other_capability;
    expect(capability == other_capability, "empty capabilities are equal");
    capability.hold = true;
    expect(capability != other_capability, "a capability on hold is another");
}

}  // namespace

int main() {
    attributes();
    other_classes();
    if (failures == 0) {
        std::puts("the quiet forms ask the object on the left");
    }
    return failures == 0 ? 0 : 1;
}
