// Counts the objects of this companion, so that a forgotten or a doubled free shows.

#ifndef OTHER_COMPANION_COUNTED_H
#define OTHER_COMPANION_COUNTED_H

struct Counted {
    Counted() { ++alive; }
    Counted(const Counted& /*other*/) { ++alive; }
    Counted& operator=(const Counted& other) = default;
    ~Counted() { --alive; }

    static int alive;
};

#endif
