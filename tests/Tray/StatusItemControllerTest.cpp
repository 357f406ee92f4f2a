#include "Quarrow/Desktop/StatusItemController.h"

#include "tests/Support/ManualQueue.h"

#include <gtest/gtest.h>

#include <memory>

namespace quarrow {
namespace {

using fennick::Seconds;

class StatusItemControllerTest : public ::testing::Test {
protected:
  struct Item : StatusItemController::Item {
    void setFace(TrayFace to) override { face = to; }
    TrayFace face = TrayFace::normal;
  };
  struct Panel : StatusItemController::Panel {
    [[nodiscard]] bool isOpen() const override { return is; }
    void open() override { is = true; }
    void close() override { is = false; }
    bool is = false;
  };

  fennick::test::ManualQueue queue;
  Item item;
  Panel panel;
  std::unique_ptr<StatusItemController> controller =
      std::make_unique<StatusItemController>(item, panel, queue, queue.clock());
};

TEST_F(StatusItemControllerTest, KeepsTheCheckMarkAfterTheLastArrival) {
  controller->flash();
  EXPECT_EQ(item.face, TrayFace::received);
  queue.advance(Seconds(1));
  controller->flash();
  queue.advance(Seconds(1.19)); // the first flash has ended without an effect
  EXPECT_EQ(item.face, TrayFace::received);
  queue.advance(Seconds(0.01));
  EXPECT_EQ(item.face, TrayFace::normal);

  controller->flash();
  controller.reset(); // nothing happens after the destruction
  queue.advance(Seconds(2));
  EXPECT_EQ(item.face, TrayFace::received);
}

TEST_F(StatusItemControllerTest, TogglesThePanelWhicheverEventComesFirst) {
  controller->togglePopover();
  EXPECT_TRUE(panel.isOpen());
  controller->togglePopover(); // the bar does not take focus
  EXPECT_FALSE(panel.isOpen());

  controller->togglePopover();
  controller->panelLeft(); // the bar takes focus at the press
  queue.advance(Seconds(0.3));
  controller->togglePopover();
  EXPECT_FALSE(panel.isOpen());
  controller->togglePopover(); // the click is over
  EXPECT_TRUE(panel.isOpen());

  controller->panelLeft(); // a click elsewhere, and later on the icon
  queue.advance(Seconds(0.5));
  controller->togglePopover();
  EXPECT_TRUE(panel.isOpen());
}

} // namespace
} // namespace quarrow
