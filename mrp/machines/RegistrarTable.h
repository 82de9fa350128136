// The registrar's table: what each state does on each event, as steps in their order.
//
// What differs from the table of IEEE 802.1Q (10.7.8), and is meant to:
//    - regNew indicates in every state, with no comparison; in Mt and for regNew the stored value
//      is not touched.
//    - In In, a join with an unchanged value counts and does not indicate; in Lv, a join indicates
//      on a changed value only and never counts.
//    - regFlush in In is silent; regFlush in Lv is what indicates, and leaves the attribute in the
//      leave pending sets, where its timer later finds Mt and does nothing.
//    - regRedeclare acts like a leave.
#pragma once

#include "mrp/machines/StateTable.h"
#include "mrp/vocabulary/MrpEnums.h"

#include <array>

namespace Mrp {

class MrpRegistrarSm;

enum class RegistrarStep : U8 {
   logJoin,
   logLeave,
   toIn,
   toLv,
   toMt,
   pend,           // into the leave pending sets
   unpend,         // out of them
   traceJoinBlank, // three texts for one thing: each cell has its own
   traceJoin,
   traceJoinInLv,
   traceLeave,
   indicateJoin,
   checkJoin, // indicates if the value has changed
   indicateLeave,
   countJoin,
   countLeave
};

// Runs the steps of a cell in their order; true if the application refused a join. Defined, and
// the table used, in MrpRegistrarSm.cpp alone.
using RegistrarAction = bool ( * )( MrpRegistrarSm & sm, MrpRegistrarState state,
                                    MrpRegistrarEvent event );
template < RegistrarStep... steps >
bool runSteps( MrpRegistrarSm & sm, MrpRegistrarState state, MrpRegistrarEvent event );

struct RegistrarRow {
   MrpRegistrarEvent event;
   std::array< RegistrarAction, 3 > actions; // by state; null: nothing happens
};

namespace RegistrarCells {

using enum RegistrarStep;

constexpr RegistrarRow row( MrpRegistrarEvent event, RegistrarAction in, RegistrarAction lv,
                            RegistrarAction mt ) {
   return { event, { in, lv, mt } };
}

inline constexpr RegistrarAction none = nullptr;
inline constexpr auto newInIn = runSteps< logJoin, indicateJoin, countJoin >;
inline constexpr auto newInLv = runSteps< unpend, toIn, traceJoinInLv, indicateJoin, countJoin >;
inline constexpr auto newInMt = runSteps< logJoin, toIn, traceJoinBlank, indicateJoin, countJoin >;
inline constexpr auto joinInIn = runSteps< checkJoin, countJoin >;
inline constexpr auto joinInLv = runSteps< toIn, unpend, traceJoinInLv, checkJoin >;
inline constexpr auto joinInMt = runSteps< logJoin, toIn, traceJoin, indicateJoin, countJoin >;
inline constexpr auto leaving_ = runSteps< pend, toLv >;
inline constexpr auto silentMt = runSteps< toMt >;
inline constexpr auto flushed_ = runSteps< logLeave, toMt, traceLeave, indicateLeave, countLeave >;
inline constexpr auto expired_ =
   runSteps< logLeave, toMt, traceLeave, indicateLeave, countLeave, unpend >;

// clang-format off
inline constexpr std::array< RegistrarRow, 9 > table{
   //                  In        Lv        Mt
   row( regNew,       newInIn,  newInLv,  newInMt  ),
   row( regJoinIn,    joinInIn, joinInLv, joinInMt ),
   row( regJoinMt,    joinInIn, joinInLv, joinInMt ),
   row( regLv,        leaving_, leaving_, none     ),
   row( regLvAll,     leaving_, leaving_, none     ),
   row( regTxLvAll,   leaving_, leaving_, none     ),
   row( regRedeclare, leaving_, leaving_, none     ),
   row( regFlush,     silentMt, flushed_, none     ),
   row( regLeaveTimer, none,    expired_, none     ),
};
// clang-format on

static_assert( rowsStandAtTheirEvents( table ) );
static_assert( mrpIn == 0 && mrpLv == 1 && mrpMt == 2 && invalidRegistrarEvent == table.size() );

} // namespace RegistrarCells

} // namespace Mrp
