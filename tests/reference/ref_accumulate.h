// Reference model of accumulation, straight from the element rules: every
// step in single precision in the order written. Pixels before the last
// width % 4 of a row are treated branch-free (a masked-out pixel becomes
// d + 0.0f); the last width % 4 pixels are left alone when masked out.
#ifndef RVPCV_REF_ACCUMULATE_H
#define RVPCV_REF_ACCUMULATE_H

namespace ref {

enum class AccOp { Add, Square, Product, Weighted };

template <class T>
inline float accTerm(AccOp op, T s1, T s2, float d, float alpha) {
    const float a = static_cast<float>(s1), b = static_cast<float>(s2);
    switch (op) {
    case AccOp::Add: return a;
    case AccOp::Square: return a * a;
    case AccOp::Product: return a * b;
    default: return (a - d) * alpha;
    }
}

// One pixel at column x of a row of width w; mask null when unmasked.
template <class T>
inline float accumulate(AccOp op, T s1, T s2, const unsigned char* mask, float d, float alpha, int x, int w) {
    if (mask == nullptr || *mask != 0) return d + accTerm(op, s1, s2, d, alpha);
    const bool branchFree = x < w - w % 4;
    return branchFree ? d + 0.0f : d;
}

}  // namespace ref

#endif
