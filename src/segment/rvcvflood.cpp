// Priority-queue flooding shared by the watershed and the gradient
// segmentation: 257 first-in first-out queues indexed by level, a pool of
// one node per pixel (a pixel enters a queue at most once, so the pool
// cannot run dry), and a copy of the labels inside a ring of the boundary
// label, so that no neighbour test leaves the image.
#include "segment/rvcvsegment.h"

namespace rvcv {
namespace seg {
namespace {

struct Node {
    Node* next;
    int32_t at;  // pixel in the bordered copy
    int32_t unused;
};
static_assert(sizeof(Node) == 16, "16-byte nodes");

struct Queues {
    Node* head[257] = {};
    Node* tail[257] = {};
    Node* free = nullptr;
    void push(int q, int32_t at) {
        Node* n = free;
        free = n->next;
        n->next = nullptr;
        n->at = at;
        if (tail[q]) tail[q]->next = n;
        else head[q] = n;
        tail[q] = n;
    }
    Node* pop(int q) {
        Node* n = head[q];
        head[q] = n->next;
        if (!head[q]) tail[q] = nullptr;
        n->next = free;  // the node goes back first
        free = n;
        return n;
    }
};

}  // namespace

int64_t queueBytes(RvpiSize roi, int labelBytes) {
    const int64_t w = roi.width, h = roi.height;
    return 16 * w * h + 48 + labelBytes * (w + 2) * (h + 2);
}

template <class T>
void floodQueue(const Rvp8u* level, int levelStep, T* marker, int markerStep, RvpiSize roi, bool four, int flag,
                Rvp8u* buffer) {
    const T B = std::numeric_limits<T>::max();
    const int w = roi.width, h = roi.height, s = w + 2;
    Node* pool = reinterpret_cast<Node*>((reinterpret_cast<uintptr_t>(buffer) + 15) & ~uintptr_t{15});
    const int64_t nodes = static_cast<int64_t>(w) * h;
    T* lab = reinterpret_cast<T*>(pool + nodes);
    Queues q;
    for (int64_t i = 0; i < nodes; ++i) pool[i].next = i + 1 < nodes ? pool + i + 1 : nullptr;
    q.free = pool;
    for (int x = 0; x < s; ++x) lab[x] = lab[static_cast<int64_t>(h + 1) * s + x] = B;
    for (int y = 0; y < h; ++y) {
        T* r = lab + static_cast<int64_t>(y + 1) * s;
        r[0] = r[w + 1] = B;
        std::memcpy(r + 1, rowPtr(marker, markerStep, y), sizeof(T) * w);
    }
    // Neighbour offsets in the flooding order: left, right, up, down, then
    // up-left, up-right, down-left, down-right.
    const int32_t off[8] = {-1, 1, -s, s, -s - 1, -s + 1, s - 1, s + 1};
    const int n = four ? 4 : 8;
    const int border = flag & kBorder4 ? 4 : flag & kBorder8 ? 8 : 0;
    // Level of the pixel at a bordered offset.
    const auto gray = [&](int32_t at) {
        const int32_t y = at / s - 1, x = at % s - 1;
        return level[static_cast<int64_t>(levelStep) * y + x];
    };

    // Seeds with an unlabelled neighbour enter the queues; with a boundary
    // bit, a seed touching another label becomes boundary at once.
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int32_t at = (y + 1) * s + x + 1;
            const T l = lab[at];
            if (l == 0) continue;
            bool open = false;
            for (int k = 0; k < n; ++k) open = open || lab[at + off[k]] == 0;
            if (open && l != B) q.push(gray(at), at);
            if (!border || l == B) continue;
            for (int k = 0; k < border; ++k) {
                const T v = lab[at + off[k]];
                if (v != 0 && v != B && v != l) {
                    lab[at] = B;
                    break;
                }
            }
        }
    // A pixel n reached with label l: two regions around it make it boundary;
    // reached from a boundary pixel it takes the first true label around it.
    const auto boundaryLabel = [&](int32_t at, int32_t from, T l) {
        for (int k = 0; k < border; ++k) {
            if (at + off[k] == from) continue;
            const T v = lab[at + off[k]];
            if (v == 0 || v == B || v == l) continue;
            if (l < B) return B;
            l = v;
        }
        return l;
    };
    for (int lv = 0;;) {
        while (lv < 257 && !q.head[lv]) ++lv;
        if (lv == 257) break;
        const int32_t at = q.pop(lv)->at;
        const T l = lab[at];
        for (int k = 0; k < n; ++k) {
            const int32_t nb = at + off[k];
            if (lab[nb] != 0) continue;
            const int g = gray(nb);
            q.push(g > lv ? g : lv, nb);
            lab[nb] = border ? boundaryLabel(nb, at, l) : l;
        }
    }
    for (int y = 0; y < h; ++y)
        std::memcpy(rowPtr(marker, markerStep, y), lab + static_cast<int64_t>(y + 1) * s + 1, sizeof(T) * w);
}

template void floodQueue<Rvp8u>(const Rvp8u*, int, Rvp8u*, int, RvpiSize, bool, int, Rvp8u*);
template void floodQueue<Rvp16u>(const Rvp8u*, int, Rvp16u*, int, RvpiSize, bool, int, Rvp8u*);

}  // namespace seg
}  // namespace rvcv
