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
      virtual void onEntry( U32 /* key */ ) {}
   };
   U32 number() const { return number_; }
   void numberIs( U32 number ) { set( number_, number, &Reactor::onNumber ); }
   void entryIs( U32 key ) { notify( &Reactor::onEntry, key ); }

 private:
   U32 number_ = 0;
};

class NotifierTest : public testing::Test {
 protected:
   // Writes its letter for each change and then does what it is told.
   class Watcher : public Subject::Reactor {
    public:
      Watcher( NotifierTest & test, char letter ) : test_( test ), letter_( letter ) {
         notifierIs( test.subject.ptr() );
      }
      void onNumber() override {
         test_.heard += letter_;
         if ( auto const own = action ) { // the watcher may go in it
            own();
         }
      }
      void onEntry( U32 key ) override { test_.heard += letter_ + std::to_string( key ); }
      std::function< void() > action;

    private:
      NotifierTest & test_;
      char letter_;
   };

   std::string change() {
      heard.clear();
      subject->numberIs( ++next_ );
      return heard;
   }

   Ptr< Subject > subject = new Subject;
   std::string heard;

 private:
   U32 next_ = 0;
};

TEST_F( NotifierTest, callsWatchersAtOnceInOrderAndOnlyOnChange ) {
   Watcher a( *this, 'a' ), b( *this, 'b' );
   a.action = [&] { EXPECT_EQ( subject->number(), 7u ); };
   subject->numberIs( 7 );
   EXPECT_EQ( heard, "ab" );
   subject->numberIs( 7 );
   EXPECT_EQ( heard, "ab" );
   subject->entryIs( 3 );
   EXPECT_EQ( heard, "aba3b3" );
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
   Watcher a( *this, 'a' );
   a.action = [&] {
      a.action = nullptr;
      late = std::make_unique< Watcher >( *this, 'l' );
   };
   Watcher b( *this, 'b' );
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

TEST_F( NotifierTest, theNotifierMayGoInANotification ) {
   Watcher a( *this, 'a' ), b( *this, 'b' );
   a.action = [&] { subject = nullptr; };
   subject->numberIs( 1 );
   EXPECT_EQ( heard, "a" );
   EXPECT_EQ( a.notifier(), nullptr );
   EXPECT_EQ( b.notifier(), nullptr );
   a.isRegisteredNotifieeIs( false ); // with nothing to be registered at
   a.isRegisteredNotifieeIs( true );
}

TEST_F( NotifierTest, whatAWatcherThrowsEndsTheNotificationAndNothingElse ) {
   Watcher a( *this, 'a' );
   {
      Watcher b( *this, 'b' ), c( *this, 'c' );
      b.action = [] { throw 1; };
      EXPECT_THROW( change(), int );
      EXPECT_EQ( heard, "ab" );
      b.action = nullptr;
      EXPECT_EQ( change(), "abc" );
   }
   EXPECT_TRUE( subject->isWatched() );
   a.notifierIs( Ptr< Subject const >() );
   EXPECT_FALSE( subject->isWatched() );
}

} // namespace
} // namespace Korv
