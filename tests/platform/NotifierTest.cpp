#include "mrp/platform/korv/Notifier.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
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

   std::string change() {
      heard.clear();
      subject->numberIs( subject->number() + 1 );
      return heard;
   }

   Ptr< Subject > subject = new Subject;
   std::string heard;
};

TEST_F( NotifierTest, callsWatchersAtOnceInOrderAndOnlyOnChange ) {
   Watcher a( *this, 'a' ), b( *this, 'b' );
   a.action = [&] { EXPECT_EQ( subject->number(), 7u ); };
   subject->numberIs( 7 );
   EXPECT_EQ( heard, "ab" );
   subject->numberIs( 7 );
   EXPECT_EQ( heard, "ab" );
}

TEST_F( NotifierTest, aWatcherThatHasGoneIsNotCalled ) {
   auto a = std::make_unique< Watcher >( *this, 'a' );
   auto b = std::make_unique< Watcher >( *this, 'b' );
   Watcher c( *this, 'c' ), d( *this, 'd' );
   a->action = [&] {
      a = nullptr; // itself
      b = nullptr; // the next
      c.notifierIs( Ptr< Subject const >() );
   };
   EXPECT_EQ( change(), "ad" );
   EXPECT_EQ( change(), "d" );
}

TEST_F( NotifierTest, aWatcherThatHasComeHearsTheNextChange ) {
   std::unique_ptr< Watcher > late;
   Watcher a( *this, 'a' ), b( *this, 'b' );
   a.action = [&] {
      a.action = nullptr;
      late = std::make_unique< Watcher >( *this, 'l' );
   };
   EXPECT_EQ( change(), "ab" );
   EXPECT_EQ( change(), "abl" );
}

TEST_F( NotifierTest, aChangeWithinAChangeIsHeardByAll ) {
   Watcher a( *this, 'a' ), b( *this, 'b' );
   auto c = std::make_unique< Watcher >( *this, 'c' );
   a.action = [&] {
      a.action = [&] { c = nullptr; };
      heard += '(';
      subject->numberIs( 1000 );
      heard += ')';
   };
   EXPECT_EQ( change(), "a(ab)b" );
}

TEST_F( NotifierTest, aNotifierThatGoesLeavesItsWatchers ) {
   Watcher a( *this, 'a' ), b( *this, 'b' );
   a.action = [&] { subject = nullptr; };
   EXPECT_EQ( change(), "a" );
   EXPECT_EQ( a.notifier(), nullptr );
   EXPECT_EQ( b.notifier(), nullptr );

   subject = new Subject;
   Watcher const single( *this, 's' );
   subject = nullptr;
   EXPECT_EQ( single.notifier(), nullptr );
}

TEST_F( NotifierTest, whatAWatcherThrowsEndsTheNotificationAndNothingElse ) {
   Watcher a( *this, 'a' ), b( *this, 'b' ), c( *this, 'c' );
   b.action = [] { throw 1; };
   EXPECT_THROW( change(), int );
   EXPECT_EQ( heard, "ab" );
   b.action = nullptr;
   EXPECT_EQ( change(), "abc" );
}

} // namespace
} // namespace Korv
