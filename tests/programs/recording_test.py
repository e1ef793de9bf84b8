"""tarn-headless --record and tarn-gs on guest programs, and the report page in a browser."""

import json
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from tarn_programs import BUILD, ProgramTest, guest

RECORDINGS = Path(__file__).parent / "recordings"

SCENE = """
#include "tarn_guest.h"
static Quadword memory[64];
static Packet packet;
static void sprite(u32 x0, u32 y0, u32 x1, u32 y1, u32 z, u32 colour) {
    packetRegister(&packet, GS_PRIM, PRIM_SPRITE);
    packetRegister(&packet, GS_RGBAQ, gsRgbaq(colour, 0));
    packetRegister(&packet, GS_XYZ2, gsXyz(x0 << 4, y0 << 4, z));
    packetRegister(&packet, GS_XYZ2, gsXyz(x1 << 4, y1 << 4, z));
    packetSend(&packet);
}
static u32 drawn;
__attribute__((noinline)) static void drawHidden(void) { sprite(20, 20, 60, 60, 10, 0x8020A0F0), drawn++; }
__attribute__((noinline)) static void drawShown(void) { sprite(40, 40, 90, 80, 200, SHOWN), drawn++; }
int main(void) {
    packet = packetIn(memory, 64);
    packetRegister(&packet, GS_TRXDIR, 1);
    packetRegister(&packet, GS_FRAME_1, gsFrame(0, 2, PSM_32, MASK));
    packetRegister(&packet, GS_ZBUF_1, gsZbuf(40, PSM_32, 0));
    packetRegister(&packet, GS_SCISSOR_1, gsScissor(0, 0, 127, 95));
    packetRegister(&packet, GS_TEST_1, gsTestDepth(ZTST_GREATER));
    sprite(0, 0, 128, 96, 100, 0x80A04020);
    drawHidden();
    drawShown();
    waitForever();
}
"""

# Steps, clicks and looks, and leaves what it sees in the page's title.
DRIVER = """
addEventListener("error", event => { document.title = "error " + event.message; });
const wait = setInterval(() => {
  if (!document.documentElement.dataset.ready) return;
  clearInterval(wait);
  const picture = document.getElementById("picture");
  const pixel = (x, y) => [...picture.getContext("2d").getImageData(x, y, 1, 1).data];
  const key = name => document.dispatchEvent(new KeyboardEvent("keydown", {key: name}));
  const seen = {last: pixel(50, 50), rows: document.querySelectorAll(".row").length};
  key("Home");
  seen.first = pixel(50, 50);
  key("ArrowRight");
  seen.stepped = pixel(50, 50);
  const slider = document.getElementById("slider");
  slider.value = slider.max;
  slider.dispatchEvent(new Event("input"));
  seen.again = pixel(50, 50);
  const box = picture.getBoundingClientRect();
  picture.dispatchEvent(new MouseEvent("click", {
    clientX: box.left + 50.5 * box.width / picture.width, clientY: box.top + 50.5 * box.height / picture.height}));
  seen.history = [...document.querySelectorAll("#history tbody tr")].map(row => [...row.cells].map(c => c.textContent));
  document.querySelector("#history tbody tr").click();
  seen.outline = document.querySelector("#outline > *").tagName;
  seen.position = slider.value;
  document.getElementById("overdraw").click();
  seen.overdraw = pixel(50, 50);
  document.title = JSON.stringify(seen);
}, 20);
"""


class RecordingTest(ProgramTest):
    def gs(self, *arguments, status=0):
        result = subprocess.run([BUILD / "tarn-gs", *arguments], cwd=self.directory, capture_output=True, text=True,
                                timeout=240, check=False)
        self.assertEqual(result.returncode, status, result.stdout + result.stderr)
        return result.stdout, result.stderr

    def record(self, program, name, *options, frames=40):
        self.run_headless("--quiet", "--frames", str(frames), "--record", name, *options, program, status=0)

    def record_scene(self, name, shown="0x80FFFFFF", mask="0"):
        built = self.build({"scene.c": SCENE.replace("SHOWN", shown).replace("MASK", mask)})
        self.assertEqual(built.returncode, 0, built.stderr)
        self.record("program.elf", name, frames=2)

    def commands(self, *arguments):
        return json.loads(self.gs("list", "--json", *arguments)[0])


class CommandsTest(RecordingTest):
    def test_the_renderer_draws_what_it_drew(self):
        for recording in sorted(RECORDINGS.glob("*.gsr")):
            with self.subTest(recording.name):
                self.gs("replay", recording)

    def test_frames_are_parts_of_the_whole(self):
        self.record(guest("bounce"), "all.gsr", frames=45)
        self.record(guest("bounce"), "part.gsr", "--record-frames", "40:41", frames=45)
        self.gs("replay", "part.gsr")
        keys = "frame", "step", "pc", "symbol", "callers", "text"
        part, whole = ([[command[key] for key in keys] for command in self.commands("--kind", "all", name)
                        if command["frame"] in (40, 41)] for name in ("part.gsr", "all.gsr"))
        self.assertEqual(part, whole)
        self.assertGreater(len(part), 50)

    def test_steps_do_not_depend_on_how_the_machine_runs(self):
        self.record(guest("primitives"), "fast.gsr", frames=12)
        self.record(guest("primitives"), "slow.gsr", "--trace", "/dev/null", frames=12)
        self.assertEqual(*(self.gs("list", "--kind", "all", name)[0] for name in ("fast.gsr", "slow.gsr")))

    def test_info(self):
        self.record_scene("scene.gsr", mask="0xFF000000")
        info = self.gs("info", "scene.gsr")[0]
        self.assertRegex(info, r"primitives +0 points, 0 lines, 0 triangles, 3 sprites")
        self.assertRegex(info, rf"pixels written +{127 * 95 + 50 * 40}\n")
        warnings = re.findall("warning: .*", info)
        self.assertEqual(len(warnings), 2, info)
        self.assertRegex("".join(warnings), r"TRXDIR 1.*FBMSK.*command 7 of frame 1.*send < main")
        self.assertIn("10, of 47744 bytes\n", self.gs("info", RECORDINGS / "primitives.gsr")[0])

    def test_list(self):
        self.record_scene("scene.gsr")
        sprites = self.commands("--kind", "sprite", "--full", "scene.gsr")
        self.assertEqual([[(v["x"], v["y"], v["z"]) for v in s["vertices"]] for s in sprites],
                         [[(0, 0, 100), (128, 96, 100)], [(20, 20, 10), (60, 60, 10)], [(40, 40, 200), (90, 80, 200)]])
        self.assertEqual(sprites[1]["registers"]["TEST_1"]["ZTST"], 3)
        for sprite, caller in zip(sprites[1:], ("drawHidden", "drawShown")):
            self.assertIn(f"send < {caller} < main", sprite["callers"])
        self.assertEqual([blank["step"] for blank in self.commands("--kind", "blank", "scene.gsr")], [28657, 57316])
        lines = self.gs("list", "scene.gsr", "--kind", "sprite", "--full")[0]
        self.assertIn("ZBUF_1  ZBP=40 PSM=0 ZMSK=0", lines)
        lines = self.gs("list", RECORDINGS / "primitives.gsr", "--full")[0]
        self.assertRegex(lines, r"context 2 .*\n    PRIM .*\n    FRAME_2 ")

    def test_pixel_and_picture(self):
        self.record_scene("scene.gsr")
        history = self.gs("pixel", "scene.gsr", "50", "50")[0].splitlines()[1:]
        self.assertEqual([re.match(r" *\d+ +\d+  (\w+(?: \w+)*) +(#\w+ -> #\w+)  depth (\d+ -> \d+)", line).groups()
                          for line in history],
                         [("written", "#00000000 -> #80a04020", "0 -> 100"),
                          ("depth test", "#80a04020 -> #80a04020", "100 -> 100"),
                          ("written", "#80a04020 -> #80ffffff", "100 -> 200")])
        numbers = [command["number"] for command in self.commands("--kind", "sprite", "scene.gsr")]
        self.gs("picture", "--at", str(numbers[0]), "scene.gsr", "sky.png")
        self.gs("picture", "--buffer", "depth", "scene.gsr", "depth.png")
        for name in "sky.png", "depth.png":
            self.assertEqual(self.output_file(name)[:24][16:], bytes([0, 0, 0, 128, 0, 0, 1, 224]))

    def test_diff(self):
        self.record_scene("a.gsr")
        self.record_scene("b.gsr", shown="0x80FFFF00")
        self.assertRegex(self.gs("diff", "a.gsr", "a.gsr")[0], "no difference")
        text = self.gs("diff", "a.gsr", "b.gsr", status=1)[0]
        self.assertRegex(text, r"first after command \d+:\n.*sprite .40,40 z 200.*main")
        self.assertRegex(text, r"\(40,40\)  #80ffffff  #80ffff00\n(    \(.*\n){7}    2000 words of local memory differ")
        self.record("program.elf", "shorter.gsr", frames=1)
        self.assertRegex(self.gs("diff", "b.gsr", "shorter.gsr", status=1)[0], r"field 0.*\n  \(its end\)\n")

    def test_what_is_wrong_is_said(self):
        self.record_scene("scene.gsr")
        whole = self.output_file("scene.gsr")
        for name, contents in (("short", whole[:-20]), ("other", b"x" * 99), ("empty", b"")):
            (self.directory / name).write_bytes(contents)
        for arguments, status, message in (
                (("list", "short"), 3, r"cut off in the block at byte \d+"), (("replay", "short"), 3, "at byte"),
                (("info", "other"), 3, "not a recording"), (("info", "empty"), 3, "not a recording"),
                (("list", "absent"), 3, "No such file"), (("list",), 2, "takes 1 argument"),
                (("list", "--at", "3", "scene.gsr"), 2, "no option --at"), (("pixel", "scene.gsr", "1", "x"), 2, "'x'"),
                (("picture", "--at", "999", "scene.gsr", "x.png"), 3, "none of number 999"),
                (("pixel", "scene.gsr", "128", "0"), 3, "outside the frame buffer"),
                (("pixel", "scene.gsr", "0", "8192"), 3, "outside the frame buffer"),
                (("report", "--frame", "2", "scene.gsr", "x.html"), 3, "no primitive is drawn in frame 2"),
                (("paint", "scene.gsr"), 2, "no command 'paint'"), (("report", "scene.gsr", "/no/x"), 3, "cannot write")):
            with self.subTest(arguments):
                self.assertRegex(self.gs(*arguments, status=status)[1], message)
        self.assertEqual(list(self.directory.glob("x.*")), [], "what fails writes nothing")
        self.assertEqual(self.commands_of("short"), self.commands_of("scene.gsr"))
        for options, status, message in ((("--record-frames", "3:2"), 2, "FIRST:LAST"),
                                         (("--frames", "1", "--record", "x.gsr", "--record-frames", "9:9"), 1, "first frame")):
            self.assertRegex(self.run_headless(*options, "program.elf", status=status)[1], message)

    def commands_of(self, name):
        return subprocess.run([BUILD / "tarn-gs", "list", name], cwd=self.directory, capture_output=True,
                              check=False).stdout


class ReportTest(RecordingTest):
    def test_in_a_browser(self):
        browser = shutil.which("chromium")
        self.assertIsNotNone(browser, "chromium is missing: scripts/install-dependencies")
        self.record_scene("scene.gsr")
        self.gs("report", "scene.gsr", "report.html")
        page = self.output_file("report.html").decode()
        self.assertNotIn("http", page.replace("http://www.w3.org/2000/svg", ""))
        (self.directory / "driven.html").write_text(page.replace("</body>", f"<script>{DRIVER}</script></body>"))
        result = subprocess.run([browser, "--headless", "--no-sandbox", "--disable-gpu", "--window-size=1280,800",
                                 f"--user-data-dir={self.directory}/browser", "--virtual-time-budget=20000",
                                 "--dump-dom", "driven.html"], cwd=self.directory, capture_output=True, text=True,
                                timeout=200, check=False)
        title = re.search("<title>(.*?)</title>", result.stdout, re.DOTALL)
        self.assertIsNotNone(title, result.stdout[:2000] + result.stderr)
        seen = json.loads(title.group(1))
        sky, shown, black = [32, 64, 160, 255], [255, 255, 255, 255], [0, 0, 0, 255]
        self.assertEqual([seen["first"], seen["stepped"], seen["last"], seen["again"]], [black, sky, shown, shown])
        self.assertEqual([row[1:3] for row in seen["history"]],
                         [["sprite", "written"], ["sprite", "depth test"], ["sprite", "written"]])
        self.assertEqual([row[3:] for row in seen["history"]],
                         [["#00000000", "#80a04020"], ["#80a04020", "#80a04020"], ["#80a04020", "#80ffffff"]])
        self.assertEqual((seen["outline"], seen["position"]), ("rect", "1"))
        self.assertNotIn(seen["overdraw"], [black, sky, shown])
        self.assertGreaterEqual(seen["rows"], 4)


if __name__ == "__main__":
    unittest.main()
