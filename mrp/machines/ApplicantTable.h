// The applicant's table: what each state does on each event.
//
// A cell names what is sent, then the state entered, or St where it stays. What is sent goes
// out before the state changes.
//
//    nb New both        jb Join both       on the first and then on the second packet context
//    no New once        jo Join once       on the first
//    rg Registered once                    In or Mt, on the first
//    rj Registered once, then Join on the second
//    lv Leave                              on the first
//    to nothing
//
// The states, in the order of their numbers:
//
//    VO VeryAnxiousObserver  VP VeryAnxiousPassive  VN VeryAnxiousNew   AN AnxiousNew
//    AA AnxiousActive        QA QuietActive         LA LeavingActive    AO AnxiousObserver
//    QO QuietObserver        AP AnxiousPassive      QP QuietPassive     LO LeavingObserver
//
// No transition enters VP, VN, AN, AA, LA, AP or LO; a restored record can hold them.
//
// What differs from the table of IEEE 802.1Q (10.7.7), and is meant to:
//    - The sending is done in the transition, so that a second transmission of a Join or a New is
//      the same message in the interface's second frame.
//    - appFlush and rxNew do nothing: a flush acts on the registrar alone.
//    - appNew and appJoin in QA send again on both, each time they are posted.
//    - appJoin sends twice from VO, once from AO and not at all from QO.
//    - txLvAll differs from rxLvAll only where a Join would go out: there it is once, not both.
#pragma once

#include "mrp/machines/StateTable.h"
#include "mrp/vocabulary/MrpEnums.h"

#include <array>

namespace Mrp {

enum class ApplicantSends : U8 {
   nothing,
   newBoth,
   newOnce,
   joinBoth,
   joinOnce,
   registeredOnce,
   registeredThenJoinSecond,
   leave
};

struct ApplicantCell {
   ApplicantSends sends;
   bool moves;
   U8 nextNumber; // of the state entered, if it moves

   constexpr MrpApplicantState next() const {
      return static_cast< MrpApplicantState >( nextNumber );
   }
};

struct ApplicantRow {
   MrpApplicantEvent event;
   std::array< ApplicantCell, 12 > cells;
};

namespace ApplicantCells {

constexpr ApplicantCell stay( ApplicantSends sends ) { return { sends, false, 0 }; }
constexpr ApplicantCell to( MrpApplicantState next,
                            ApplicantSends sends = ApplicantSends::nothing ) {
   return { sends, true, static_cast< U8 >( next ) };
}
// A row has one cell a state, or it does not compile.
template < class... Cell >
requires( sizeof...( Cell ) == 12 ) constexpr ApplicantRow
   row( MrpApplicantEvent event, Cell... cell ) {
   return { event, { cell... } };
}

using enum ApplicantSends;

inline constexpr auto none = stay( nothing );
inline constexpr auto nbSt = stay( newBoth );
inline constexpr auto jbSt = stay( joinBoth );
inline constexpr auto joSt = stay( joinOnce );
inline constexpr auto rgSt = stay( registeredOnce );

inline constexpr auto toVO = to( mrpVeryAnxiousObserver );
inline constexpr auto toAO = to( mrpAnxiousObserver );
inline constexpr auto toQO = to( mrpQuietObserver );
inline constexpr auto toQP = to( mrpQuietPassive );
inline constexpr auto toQA = to( mrpQuietActive );
inline constexpr auto nbQA = to( mrpQuietActive, newBoth );
inline constexpr auto noQA = to( mrpQuietActive, newOnce );
inline constexpr auto jbQA = to( mrpQuietActive, joinBoth );
inline constexpr auto joQA = to( mrpQuietActive, joinOnce );
inline constexpr auto rjQA = to( mrpQuietActive, registeredThenJoinSecond );
inline constexpr auto rgVO = to( mrpVeryAnxiousObserver, registeredOnce );
inline constexpr auto lvVO = to( mrpVeryAnxiousObserver, leave );

// clang-format off
inline constexpr std::array< ApplicantRow, 13 > table{
   //                  VO    VP    VN    AN    AA    QA    LA    AO    QO    AP    QP    LO
   row( appNew,       nbQA, nbQA, none, none, nbQA, nbSt, nbQA, nbQA, nbQA, nbQA, nbQA, nbQA ),
   row( appJoin,      jbQA, none, none, none, none, jbSt, joQA, joQA, toQP, none, none, jbQA ),
   row( appLv,        none, toVO, lvVO, lvVO, lvVO, lvVO, none, none, none, toAO, toQO, none ),
   row( appRedeclare, rgSt, none, none, nbQA, jbQA, jbSt, none, rgVO, rgVO, jbQA, jbQA, none ),
   row( appFlush,     none, none, none, none, none, none, none, none, none, none, none, none ),
   //                  VO    VP    VN    AN    AA    QA    LA    AO    QO    AP    QP    LO
   row( rxNew,        none, none, none, none, none, none, none, none, none, none, none, none ),
   row( rxJoinIn,     toAO, joQA, none, none, toQA, none, none, toQO, none, toQP, none, none ),
   row( rxIn,         none, none, none, none, toQA, none, none, none, none, none, none, none ),
   row( rxJoinMt,     none, none, none, none, none, joSt, none, none, toAO, none, joQA, toVO ),
   row( rxMt,         none, none, none, none, none, joSt, none, none, toAO, none, joQA, toVO ),
   //                  VO    VP    VN    AN    AA    QA    LA    AO    QO    AP    QP    LO
   row( rxLv,         rgSt, none, none, nbQA, jbQA, jbSt, none, rgVO, rgVO, jbQA, jbQA, none ),
   row( rxLvAll,      rgSt, none, none, nbQA, jbQA, jbSt, none, rgVO, rgVO, jbQA, jbQA, none ),
   row( txLvAll,      rgSt, rjQA, nbQA, noQA, none, joSt, rgVO, rgVO, rgVO, joQA, joQA, none ),
};
// clang-format on

// By event, a bit for each state in which it changes nothing and sends nothing.
inline constexpr auto quiet = [] {
   std::array< U16, table.size() > bits{};
   for ( U32 event = 0; event < table.size(); ++event ) {
      for ( U32 state = 0; state < table[event].cells.size(); ++state ) {
         ApplicantCell const & cell = table[event].cells[state];
         bool const isQuiet = cell.sends == ApplicantSends::nothing && !cell.moves;
         bits[event] = static_cast< U16 >( bits[event] | ( isQuiet ? 1u << state : 0u ) );
      }
   }
   return bits;
}();
// The event is one of the table's.
constexpr bool isQuiet( MrpApplicantState state, MrpApplicantEvent event ) {
   return state <= mrpLeavingObserver && ( quiet[event] >> state & 1u ) != 0;
}

static_assert( rowsStandAtTheirEvents( table ) );
static_assert( mrpLeavingObserver == 11 && invalidApplicantEvent == table.size() );

} // namespace ApplicantCells

} // namespace Mrp
