"use strict";
// Positions count the listed commands: position 0 is the picture before the first, position i the one after
// commands[i - 1].
(async () => {
  const $ = id => document.getElementById(id);
  const outcomeNames = ["not reached", "written", "depth test", "alpha test", "scissor"];
  const outcomeClasses = ["unreached", "written", "rejected", "rejected", "rejected"];
  const written = 1;
  const keyframeDistance = 64;
  const rowHeight = 22;

  async function inflate(text) {
    const packed = Uint8Array.from(atob(text), c => c.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
  }

  const about = JSON.parse($("about").textContent);
  const {width, height} = about;
  const commands = JSON.parse(new TextDecoder().decode(await inflate($("commands").textContent)));
  const data = await inflate($("pictures").textContent);

  // Reading the pictures' stream.
  let at = width * height * 4;
  function number() {
    let value = 0, scale = 1, byte;
    do {
      byte = data[at++];
      value += (byte & 127) * scale;
      scale *= 128;
    } while (byte > 127);
    return value;
  }
  const word = place => (data[place] | data[place + 1] << 8 | data[place + 2] << 16 | data[place + 3] << 24) >>> 0;

  /// Goes over the runs of a command's outcomes: use(outcome, first pixel, count).
  function forRuns(picture, use) {
    at = picture.runs;
    for (let i = 0; i < picture.w * picture.h;) {
      const outcome = data[at++];
      const count = number();
      use(outcome, i, count);
      i += count;
    }
  }

  const pictures = [];
  for (let i = 0; i < about.pictured; ++i) {
    const picture = {x: number(), y: number(), w: number(), h: number(), runs: 0, words: 0};
    picture.runs = at;
    let count = 0;
    forRuns(picture, (outcome, first, length) => { count += outcome === written ? length : 0; });
    picture.words = at;
    at += count * 4;
    pictures.push(picture);
  }

  // The picture at a position.
  const pixels = new Uint32Array(width * height);
  for (let i = 0; i < pixels.length; ++i) pixels[i] = word(i * 4);
  const keyframes = [pixels.slice()];
  let pixelsAt = 0;

  function apply(picture) {
    let source = picture.words;
    forRuns(picture, (outcome, first, count) => {
      if (outcome !== written) return;
      for (let i = first; i < first + count; ++i, source += 4) {
        pixels[(picture.y + Math.floor(i / picture.w)) * width + picture.x + i % picture.w] = word(source);
      }
    });
  }
  function goTo(position) {
    const keyframe = Math.min(Math.floor(position / keyframeDistance), keyframes.length - 1);
    if (pixelsAt > position || keyframe * keyframeDistance > pixelsAt) {
      pixels.set(keyframes[keyframe]);
      pixelsAt = keyframe * keyframeDistance;
    }
    while (pixelsAt < position) {
      apply(pictures[pixelsAt++]);
      if (pixelsAt === keyframes.length * keyframeDistance) keyframes.push(pixels.slice());
    }
  }

  /// What of the pixel's history the commands know: [{index, outcome, before, after}].
  function historyOf(x, y) {
    const entries = [];
    let value = word((y * width + x) * 4);
    pictures.forEach((picture, index) => {
      if (x < picture.x || y < picture.y || x >= picture.x + picture.w || y >= picture.y + picture.h) return;
      const pixel = (y - picture.y) * picture.w + x - picture.x;
      let writtenBefore = 0;
      let found = 0;
      let place = 0;
      forRuns(picture, (outcome, first, count) => {
        if (pixel >= first && pixel < first + count) {
          found = outcome;
          place = picture.words + (writtenBefore + pixel - first) * 4;
        }
        writtenBefore += outcome === written ? count : 0;
      });
      const before = value;
      if (found === written) value = word(place);
      entries.push({index, outcome: found, before, after: value});
    });
    return entries;
  }

  function overdrawAt(position) {
    const counts = new Uint16Array(width * height);
    for (const picture of pictures.slice(0, position)) {
      forRuns(picture, (outcome, first, count) => {
        if (outcome !== written) return;
        for (let i = first; i < first + count; ++i) {
          ++counts[(picture.y + Math.floor(i / picture.w)) * width + picture.x + i % picture.w];
        }
      });
    }
    return counts;
  }
  const heat = ["#10131a", "#1f4e9e", "#1d8a8a", "#3fa34d", "#d9c02f", "#e8852b", "#d93a2b", "#ffffff"];
  const heatWords = heat.map(c => parseInt(c.slice(5, 7) + c.slice(3, 5) + c.slice(1, 3), 16));
  const heatOf = count => count < 6 ? count : count < 10 ? 6 : 7;

  // Showing.
  const canvas = $("picture");
  canvas.width = width;
  canvas.height = height;
  const context = canvas.getContext("2d");
  const image = context.createImageData(width, height);
  const imageWords = new Uint32Array(image.data.buffer);
  $("overlay").setAttribute("viewBox", `0 0 ${width} ${height}`);
  let position = 0;
  let chosenPixel = null;

  function drawPicture() {
    const shown = Math.min(position, about.pictured);
    goTo(shown);
    if ($("overdraw").checked) {
      const counts = overdrawAt(shown);
      for (let i = 0; i < counts.length; ++i) imageWords[i] = 0xFF000000 | heatWords[heatOf(counts[i])];
    } else {
      for (let i = 0; i < pixels.length; ++i) imageWords[i] = pixels[i] | 0xFF000000;
    }
    context.putImageData(image, 0, 0);
  }

  function svg(name, attributes) {
    const element = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
    return element;
  }
  function outlineOf(command, picture) {
    const vertices = command.v;
    if (vertices && command.k === "triangle") return svg("polygon", {points: vertices.map(v => v.join()).join(" ")});
    if (vertices && command.k === "line") {
      const [[x1, y1], [x2, y2]] = vertices.map(([x, y]) => [x + .5, y + .5]);
      return svg("line", {x1, y1, x2, y2});
    }
    if (vertices && command.k === "point") return svg("circle", {cx: vertices[0][0] + .5, cy: vertices[0][1] + .5, r: 3});
    if (vertices && command.k === "sprite") {
      const [[x1, y1], [x2, y2]] = vertices;
      return svg("rect", {x: Math.min(x1, x2), y: Math.min(y1, y2), width: Math.abs(x2 - x1), height: Math.abs(y2 - y1)});
    }
    return picture && picture.w ? svg("rect", {x: picture.x, y: picture.y, width: picture.w, height: picture.h}) : null;
  }

  function element(name, text, className) {
    const made = document.createElement(name);
    if (text !== undefined) made.textContent = text;
    if (className) made.className = className;
    return made;
  }

  function showDetails() {
    const command = commands[position - 1];
    if (!command) {
      $("details").replaceChildren(element("p", "The picture before the frame's first command. Use the slider, " +
        "the arrow keys or the list; click on the picture for the history of a pixel.", "hint"));
      return;
    }
    const list = element("dl");
    for (const [name, value] of [["command", command.n], ["step", command.step], ["what", command.t], ["where", command.w]]) {
      list.append(element("dt", name), element("dd", value));
    }
    $("details").replaceChildren(list);
    if (command.s.length) $("details").append(element("pre", command.s.join("\n")));
  }

  const hex = value => "#" + value.toString(16).padStart(8, "0");
  function colourCell(value) {
    const cell = element("td", "", "colour");
    const swatch = element("i");
    swatch.style.background = `rgb(${value & 255} ${value >> 8 & 255} ${value >> 16 & 255})`;
    cell.append(swatch, hex(value));
    return cell;
  }
  function showHistory() {
    if (!chosenPixel) {
      $("history").replaceChildren(element("p", "Click on the picture: the commands that wrote the pixel, or would " +
        "have, and why they did not.", "hint"));
      return;
    }
    const {x, y} = chosenPixel;
    const table = element("table");
    table.append(element("caption", `Pixel (${x}, ${y}), the newest command last; colours are AABBGGRR`));
    const head = table.createTHead().insertRow();
    for (const name of ["command", "what", "came of it", "before", "after"]) head.append(element("th", name));
    const body = table.createTBody();
    for (const entry of historyOf(x, y)) {
      const command = commands[entry.index];
      const row = body.insertRow();
      row.title = `${command.t}\n${command.w}`;
      row.dataset.position = entry.index + 1;
      row.append(element("td", command.n, "number"), element("td", command.k),
                 element("td", outcomeNames[entry.outcome], outcomeClasses[entry.outcome]), colourCell(entry.before),
                 colourCell(entry.after));
      row.addEventListener("click", () => setPosition(entry.index + 1));
    }
    if (!body.rows.length) body.insertRow().append(element("td", "No command of this frame could reach it."));
    $("history").replaceChildren(table);
    markHistory();
  }
  /// Shows which entry is the selected command, and which come after it.
  function markHistory() {
    for (const row of document.querySelectorAll("#history tbody tr")) {
      row.classList.toggle("selected", Number(row.dataset.position) === position);
      row.classList.toggle("later", Number(row.dataset.position) > position);
    }
  }

  // The list shows only the rows that are in view.
  let filtered = commands.map((command, index) => index);
  function showRows() {
    const list = $("list");
    $("rows").style.height = filtered.length * rowHeight + "px";
    const first = Math.max(0, Math.floor(list.scrollTop / rowHeight) - 4);
    const last = Math.min(filtered.length, first + Math.ceil(list.clientHeight / rowHeight) + 8);
    const rows = [];
    for (let i = first; i < last; ++i) {
      const index = filtered[i];
      const command = commands[index];
      const row = element("div", undefined, "row");
      row.setAttribute("role", "option");
      row.setAttribute("aria-selected", index + 1 === position);
      row.style.top = i * rowHeight + "px";
      row.title = command.t;
      row.dataset.position = index + 1;
      const space = command.t.indexOf(" ");
      row.append(element("span", command.n, "number"), element("span", command.t.slice(0, space), "kind"),
                 command.t.slice(space));
      rows.push(row);
    }
    $("rows").replaceChildren(...rows);
  }
  function scrollToSelected() {
    const list = $("list");
    const top = filtered.indexOf(position - 1) * rowHeight;
    if (top < 0) return;
    if (top < list.scrollTop || top + rowHeight > list.scrollTop + list.clientHeight) {
      list.scrollTop = top - (list.clientHeight - rowHeight) / 2;
    }
  }

  function setPosition(wanted) {
    position = Math.max(0, Math.min(commands.length, wanted));
    $("slider").value = position;
    const command = commands[position - 1];
    $("position").textContent = command ? `${position} of ${commands.length}` : `before ${commands.length}`;
    drawPicture();
    const outline = command && $("outlined").checked ? outlineOf(command, pictures[position - 1]) : null;
    $("outline").replaceChildren(...outline ? [outline] : []);
    scrollToSelected();
    showRows();
    showDetails();
    markHistory();
  }
  function choosePixel(x, y) {
    chosenPixel = {x, y};
    $("cursor").setAttribute("x", x);
    $("cursor").setAttribute("y", y);
    $("cursor").removeAttribute("hidden");
    showHistory();
    selectTab("history");
  }
  function selectTab(name) {
    for (const tab of ["details", "history"]) {
      $(tab).hidden = tab !== name;
      $("tab-" + tab).setAttribute("aria-selected", tab === name);
    }
  }
  function pixelUnder(event) {
    const box = canvas.getBoundingClientRect();
    return {x: Math.max(0, Math.min(width - 1, Math.floor((event.clientX - box.left) * width / box.width))),
            y: Math.max(0, Math.min(height - 1, Math.floor((event.clientY - box.top) * height / box.height)))};
  }

  /// As large as there is room, in whole steps when the picture is enlarged.
  function fit() {
    const stage = $("stage");
    const narrow = matchMedia("(max-width: 800px)").matches;
    const room = Math.min((stage.clientWidth - 2) / width, narrow ? Infinity : (stage.clientHeight - 2) / height);
    const scale = room >= 2 ? Math.floor(room) : Math.max(room, .1);
    canvas.style.width = width * scale + "px";
    canvas.style.height = height * scale + "px";
    showRows();
  }

  $("title").textContent = document.title = `Frame ${about.frame}`;
  $("program").textContent = `${about.program}: ${commands.length} commands, frame buffer at word ` +
    `0x${about.base.toString(16)}, ${width} × ${height} of ${about.pitch} pixels a row`;
  const missing = [];
  if (about.pictured < commands.length) {
    missing.push(`pictures end after the first ${about.pictured} commands, to keep the page small`);
  }
  if (about.left) missing.push(`${about.left} more commands are not listed`);
  $("limit").textContent = missing.length ? `Left out: ${missing.join("; ")}.` : "";
  $("limit").hidden = !missing.length;
  heat.forEach((colour, i) => {
    const swatch = element("i");
    swatch.style.background = colour;
    $("legend").append(swatch, ["0", "1", "2", "3", "4", "5", "6–9", "10+"][i]);
  });

  $("slider").max = commands.length;
  $("slider").addEventListener("input", () => setPosition(Number($("slider").value)));
  $("back").addEventListener("click", () => setPosition(position - 1));
  $("forward").addEventListener("click", () => setPosition(position + 1));
  $("outlined").addEventListener("change", () => setPosition(position));
  $("overdraw").addEventListener("change", () => {
    $("legend").hidden = !$("overdraw").checked;
    drawPicture();
  });
  $("filter").addEventListener("input", () => {
    const text = $("filter").value.toLowerCase();
    filtered = commands.map((command, index) => index)
      .filter(i => `${commands[i].n} ${commands[i].t} ${commands[i].w}`.toLowerCase().includes(text));
    $("list").scrollTop = 0;
    scrollToSelected();
    showRows();
  });
  $("list").addEventListener("scroll", showRows);
  $("rows").addEventListener("click", event => {
    const row = event.target.closest(".row");
    if (row) {
      setPosition(Number(row.dataset.position));
      selectTab("details");
    }
  });
  canvas.addEventListener("click", event => {
    const {x, y} = pixelUnder(event);
    choosePixel(x, y);
  });
  canvas.addEventListener("mousemove", event => {
    const {x, y} = pixelUnder(event);
    $("hover").textContent = `(${x}, ${y}) ${hex(pixels[y * width + x])}`;
  });
  canvas.addEventListener("mouseleave", () => { $("hover").textContent = ""; });
  $("tab-details").addEventListener("click", () => selectTab("details"));
  $("tab-history").addEventListener("click", () => selectTab("history"));
  document.addEventListener("keydown", event => {
    if (event.ctrlKey || event.altKey || event.metaKey || event.target === $("filter")) return;
    const moves = {ArrowLeft: -1, ArrowUp: -1, ArrowRight: 1, ArrowDown: 1, PageUp: -20, PageDown: 20,
                   Home: -Infinity, End: Infinity};
    if (event.key in moves) {
      event.preventDefault();
      setPosition(position + moves[event.key]);
    }
  });
  addEventListener("resize", fit);

  showHistory();
  fit();
  setPosition(commands.length);
  document.documentElement.dataset.ready = "yes";
})().catch(error => {
  const place = document.getElementById("failure");
  place.textContent = typeof DecompressionStream === "undefined" ? "This browser is too old for the page's data."
                                                                 : `The page cannot be shown: ${error.message}`;
  place.hidden = false;
});
