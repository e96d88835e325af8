// The chart library: draws a graph from its numeric description. The module
// hands over a whole graph in one ChartDraw call; the library keeps a copy
// under the graph identifier until ChartRelease.
#pragma once

#include <cstdint>

#include "zvwin/zvwin.h"

namespace zv {
struct ProcedureState;
}

// Arguments in the order the module passes them. Tables and point arrays are
// plain memory valid for the duration of the call:
//   frame          the five frame words of the pane record, followed in memory
//                  by the rest of the record from its offset 0x02C on
//   elementTable   3 int32 per polyline element (points, pen, symbol style),
//   elementPoints  pointWidth doubles per point (x, y, [z,] id)
//   shapeTable     2 int32 per shape series (shapes, style), shapePoints 4 doubles
//                  per shape (left, bottom, right, top)
//   markTable      2 int32 per mark series (marks, style), markPoints 12 doubles
//                  per mark (a bubble, or a polygon of four corners)
//   textItems      11 int32 per item; textNumbers 8 doubles per string (x, y, z,
//                  length, 0...): 64 bytes; textStrings 80 bytes per string
//   titleLines     64 lines of 80 characters; titleLengths 64 int32
//   reals          28 doubles: dataRange (8), scale (8), the pane's chartReals (12)
//   words          26 int32: logScale[4], axisFixed[4], words 640 and 641,
//                  secondAxisState[4], legendOn, axisType[4] one per word,
//                  frameKind, words 654, 655 and 656 to 659
//   pairX..pairId  list B as parallel arrays, pairCount long
void ChartDraw(WindowRef window, int32_t graphId, const int32_t* frame, const int32_t* elementTable,
               int32_t elementCount, const double* elementPoints, int32_t pointCount,
               int32_t pointWidth, const int32_t* shapeTable, int32_t shapeCount,
               const double* shapePoints, int32_t shapePointCount, const int32_t* markTable,
               int32_t markCount, const double* markPoints, int32_t markPointCount,
               const int32_t* textItems, int32_t textItemCount, const double* textNumbers,
               const char* textStrings, int32_t textStringCount, const char* titleLines,
               const int32_t* titleLengths, const double* reals, const int32_t* words,
               const double* pairX, const double* pairY, const double* pairZ, const double* pairId,
               int32_t pairCount, int32_t rowCount, int32_t slot, zv::ProcedureState* state);

// The option blocks: 660 int32 words (2640 bytes) and 15 doubles (120 bytes).
void ChartPutOptions(const int32_t* integerOptions, const double* realOptions, int32_t one);
void ChartGetDefaults(int32_t* integerOptions, double* realOptions);
void ChartRelease(int32_t graphId);
