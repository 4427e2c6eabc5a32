// Glue between the guarded test images and the packed reference planes.
#ifndef RVPCV_TEST_MORPH_SUPPORT_H
#define RVPCV_TEST_MORPH_SUPPORT_H

#include "reference/ref_morphology.h"
#include "support/rvtest.h"

namespace morphtest {

template <class T> ref::Plane<T> planeOf(const rvtest::Image<T>& im, int channels) {
    ref::Plane<T> p(im.width(), im.height(), channels);
    const auto b = im.bytes();
    std::memcpy(p.v.data(), b.data(), b.size());
    return p;
}

// Every sample of the image region equals the reference, bit for bit.
template <class T> void expectSame(const rvtest::Image<T>& got, const ref::Plane<T>& want) {
    const auto b = got.bytes();
    ASSERT_EQ(b.size(), want.v.size() * sizeof(T));
    for (size_t i = 0; i < want.v.size(); ++i) {
        T g;
        std::memcpy(&g, b.data() + i * sizeof(T), sizeof(T));
        ASSERT_EQ(g, want.v[i]) << "x " << i / want.c % want.w << " y " << i / want.c / want.w << " channel "
                                << i % want.c;
    }
}

}  // namespace morphtest

#endif
