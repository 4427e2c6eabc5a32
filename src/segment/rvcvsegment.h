// Shared pieces of the segmentation family: the boundary rules that the
// watershed and the gradient segmentation draw their boundaries with, and
// the priority-queue flooding both of them run.
#ifndef RVCV_SEGMENT_H
#define RVCV_SEGMENT_H

#include <cstdint>

#include "rvcvframe.h"

namespace rvcv {
namespace seg {

// Boundary rule in place on a label image (plain or with a priority plane
// deciding which pixel of a conflicting pair takes the boundary value).
// fourNeighbours: the four-neighbour rule; a one-column image always takes it.
template <class T> void boundPlain(T* m, int step, RvpiSize roi, T val, bool fourNeighbours);
template <class T>
void boundPriority(T* m, int step, const int32_t* d, int dStep, RvpiSize roi, T val, bool fourNeighbours);

// Priority-queue flooding of the labels in `marker` over the 8-bit `level`
// image (gray values or gradients): seeds are nonzero labels below the
// boundary label, each reached pixel takes the label of the pixel it was
// reached from (or, with a boundary bit in flag, the boundary rule's label).
// fourNeighbours: the flooding neighbourhood. buffer holds the node pool and
// the bordered label copy; its size is queueBytes.
template <class T>
void floodQueue(const Rvp8u* level, int levelStep, T* marker, int markerStep, RvpiSize roi, bool fourNeighbours,
                int flag, Rvp8u* buffer);
int64_t queueBytes(RvpiSize roi, int labelBytes);

constexpr int kBorder4 = 64, kBorder8 = 128;

}  // namespace seg
}  // namespace rvcv

#endif
