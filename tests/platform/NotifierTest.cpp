#include "mrp/platform/korv/Notifier.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

namespace Korv {
namespace {

class Subject : public Notifier {
 public:
   class Reactor : public ReactorOn< Subject > {
    public:
      virtual void onNumber() {}
   };
   U32 number() const { return number_; }
   void numberIs( U32 number ) { set( number_, number, &Reactor::onNumber ); }

 private:
   U32 number_ = 0;
};

class NotifierTest : public testing::Test {
 protected:
   // Writes its letter for each change and then does what it is told.
   struct Watcher : Subject::Reactor {
      Watcher( NotifierTest & t, char l ) : test( t ), letter( l ) {
         notifierIs( test.subject.ptr() );
      }
      void onNumber() override {
         test.heard += letter;
         if ( auto const own = action ) { // the watcher may go in it
            own();
         }
      }
      NotifierTest & test;
      char letter;
      std::function< void() > action;
   };

   // Who hears of one.
   std::string change() {
      heard.clear();
      subject->numberIs( subject->number() + 1 );
      return heard;
   }

   Ptr< Subject > subject = new Subject;
   std::string heard;
   std::optional< Watcher > a{ std::in_place, *this, 'a' }, b{ std::in_place, *this, 'b' },
      c{ std::in_place, *this, 'c' }, d;
};

TEST_F( NotifierTest, callsWatchersAtOnceInOrderAndOnlyOnChange ) {
   a->action = [&] { EXPECT_EQ( subject->number(), 7u ); };
   subject->numberIs( 7 );
   subject->numberIs( 7 );
   EXPECT_EQ( heard, "abc" );
}

TEST_F( NotifierTest, aWatcherThatGoesIsNotCalledAndOneThatComesHearsTheNextChange ) {
   Watcher last( *this, 'l' );
   a->action = [&] {
      a.reset(); // itself
      b.reset(); // the next
      c->notifierIs( Ptr< Subject const >() );
      d.emplace( *this, 'd' );
   };
   EXPECT_EQ( change(), "al" );
   EXPECT_EQ( change(), "ld" );
}

TEST_F( NotifierTest, aChangeWithinAChangeIsHeardByAll ) {
   a->action = [&] {
      a->action = [&] { c.reset(); };
      heard += '(';
      subject->numberIs( 1000 );
      heard += ')';
   };
   EXPECT_EQ( change(), "a(ab)b" );
}

TEST_F( NotifierTest, aNotifierThatGoesLeavesItsWatchers ) {
   a->action = [&] { subject = nullptr; };
   EXPECT_EQ( change(), "a" );
   EXPECT_EQ( a->notifier(), nullptr );
   EXPECT_EQ( b->notifier(), nullptr );

   subject = new Subject;
   d.emplace( *this, 'd' ); // the only one
   subject = nullptr;
   EXPECT_EQ( d->notifier(), nullptr );
}

TEST_F( NotifierTest, whatAWatcherThrowsEndsTheNotificationAndNothingElse ) {
   b->action = [] { throw 1; };
   EXPECT_THROW( change(), int );
   EXPECT_EQ( heard, "ab" );
   b->action = nullptr;
   EXPECT_EQ( change(), "abc" );
}

} // namespace
} // namespace Korv
