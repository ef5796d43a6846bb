"""Everyone can use the page: by keyboard, with a screen reader, in dark colours, on a narrow phone."""

from chromium import Page
from harness import main
from shop import ShopCase

OPEN_ALL = "document.querySelectorAll('details').forEach((one) => { one.open = true; })"
ACTIVE = """(() => {
  const element = document.activeElement;
  element.dataset.visited = 'yes';
  const style = getComputedStyle(element);
  const box = element.getBoundingClientRect();
  return {tag: element.tagName, outline: style.outlineStyle !== 'none' && parseFloat(style.outlineWidth) >= 2,
          seen: box.bottom > 0 && box.top < innerHeight, text: element.textContent.slice(0, 40)};
})()"""
UNVISITED = """[...document.querySelectorAll('a[href], button, input, select, summary, [tabindex="0"]')]
  .filter((element) => element.checkVisibility() && !element.dataset.visited)
  .map((element) => element.outerHTML.slice(0, 120))"""

# Texts whose contrast to their background is lower than 4.5, or lower than 3 if the text is large.
FAINT = """(() => {
  const parsed = (text) => (text.match(/[\\d.]+/g) ?? [0, 0, 0, 0]).map(Number);
  const light = (colour) => {
    const [red, green, blue] = colour.slice(0, 3).map((part) => part / 255)
      .map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4));
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
  };
  const ground = (element) => {
    for (let at = element; at; at = at.parentElement) {
      const colour = parsed(getComputedStyle(at).backgroundColor);
      if (colour.length < 4 || colour[3] === 1) { return colour; }
    }
    return [255, 255, 255];
  };
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  const found = [];
  while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    if (!walker.currentNode.textContent.trim() || !element.checkVisibility()) { continue; }
    const style = getComputedStyle(element);
    const [one, other] = [light(parsed(style.color)), light(ground(element))];
    const ratio = (Math.max(one, other) + 0.05) / (Math.min(one, other) + 0.05);
    if (ratio < (parseFloat(style.fontSize) >= 24 ? 3 : 4.5)) {
      found.push(`${walker.currentNode.textContent.trim().slice(0, 40)}: ${ratio.toFixed(2)}`);
    }
  }
  return found;
})()"""

OPERATED = {"button", "link", "switch", "checkbox", "textbox", "searchbox", "combobox", "spinbutton", "slider",
            "DisclosureTriangle"}


class Accessibility(ShopCase):
    def shop_with_a_receipt(self, **emulation) -> tuple[Page, str]:
        shop = self.shop()
        page = self.shop_page(shop, **emulation)
        with shop.connect() as till:
            till.sendall(b"\x1b@2 Espresso        3.60\n\x1dy\x1dVA\0")
        page.until("document.querySelector('#receipts a')", "the receipt is listed")
        page.evaluate(OPEN_ALL)
        return page, f"{shop.address}receipts/1"

    def both_pages(self, **emulation):
        """Yields the page of a shop, with all its details open, and then the page of a receipt."""
        page, receipt = self.shop_with_a_receipt(**emulation)
        yield page
        page.go(receipt)
        page.until("document.querySelector('.commands tr')", "the commands are listed")
        yield page

    def test_every_control_can_be_reached_by_the_keyboard_with_a_visible_focus(self):
        for page in self.both_pages():
            for _ in range(400):
                page.press("Tab")
                at = page.evaluate(ACTIVE)
                if at["tag"] == "BODY":
                    break
                self.assertTrue(at["outline"] and at["seen"], at)
            self.assertEqual(page.evaluate(UNVISITED), [])

    def test_a_printer_can_be_operated_by_the_keyboard_alone(self):
        page = self.shop_page(self.shop())
        self.tab_to(page, "document.querySelector('.switches input')")
        page.press("Space")
        self.condition(page, "Off line: cover open")
        page.press("Space")
        self.condition(page, "Ready")
        self.tab_to(page, "document.querySelector('.sliders input')")
        page.press("ArrowLeft")
        page.until("document.querySelector('.sliders output').textContent !== 'unlimited'")
        self.tab_to(page, "document.querySelector('.settings summary')")
        page.press("Enter")
        page.until("document.querySelector('.settings').open")
        self.tab_to(page, "document.querySelector('.machine button')", backwards=True)
        page.press("Enter")
        page.until("document.querySelector('#log').textContent.includes('tear')", "the button was pressed")

    def tab_to(self, page: Page, element: str, backwards: bool = False):
        for _ in range(200):
            if page.evaluate(f"document.activeElement === {element}"):
                return
            page.press("Tab", shift=backwards)
        self.fail(f"not reached: {element}")

    def test_each_control_has_a_role_and_a_name_for_assistive_technology(self):
        for page in self.both_pages():
            tree = page.tree()
            unnamed = [node for node in tree if node["role"] in OPERATED | {"image", "region", "table"} and not node["name"]]
            self.assertEqual(unnamed, [])
            roles = [node["role"] for node in tree]
            for landmark in ("banner", "navigation", "main"):
                self.assertEqual(roles.count(landmark), 1, landmark)
            self.assertGreaterEqual(roles.count("heading"), 2)

    def test_the_switch_of_each_condition_exposes_whether_the_condition_is_on(self):
        page, _ = self.shop_with_a_receipt()
        self.turn(page, "Cover open")
        self.condition(page, "Off line: cover open")
        switches = {node["name"]: node.get("checked") for node in page.tree() if node["role"] == "switch"}
        self.assertEqual((switches["Cover open"], switches["Paper out"]), ("true", "false"))

    def test_each_slider_exposes_its_value_in_words(self):
        page = self.shop_page(self.shop())
        self.assertEqual({node["name"] for node in page.tree() if node["role"] == "slider"}, {"Speed", "Buffer"})
        # The accessibility tree gives the value of a native slider as a number, even if the page sets a text for it.
        spoken = "[...document.querySelectorAll('.sliders input')].map((one) => one.getAttribute('aria-valuetext'))"
        self.assertEqual(page.evaluate(spoken), ["unlimited", "4\u2009096 bytes"])

    def test_a_change_is_announced_once_to_screen_readers(self):
        page = self.shop_page(self.shop())
        self.turn(page, "Cover open")
        page.until("document.querySelector('#announcer').textContent.endsWith('Off line: cover open')")
        self.assertEqual(page.evaluate("document.querySelectorAll('[aria-live=assertive]').length"), 0)

    def test_every_text_has_enough_contrast_in_the_light_and_the_dark_theme(self):
        for dark in (False, True):
            for page in self.both_pages(dark=dark):
                self.assertEqual(page.evaluate(FAINT), [], f"dark: {dark}")
                lightness = page.evaluate("getComputedStyle(document.body).backgroundColor.match(/\\d+/g).map(Number)")
                self.assertEqual(sum(lightness) < 3 * 64, dark)

    def test_the_page_fits_on_a_phone_of_360_pixels(self):
        for page in self.both_pages(width=360, height=740):
            self.assertEqual(page.evaluate("document.documentElement.scrollWidth"), 360)
            small = page.evaluate("""[...document.querySelectorAll('button, select, summary, input:not([type=checkbox])')]
                .filter((element) => element.checkVisibility() && element.getBoundingClientRect().height < 24)
                .map((element) => element.outerHTML.slice(0, 90))""")
            self.assertEqual(small, [], "too small for a finger")


if __name__ == "__main__":
    main()
