"use strict";
// configweb's page: who the unit is, its menu groups split into sections,
// a search over every parameter, live values from the event stream, and
// the preset panel. The URL's hash holds the view ("g" group, "q" search,
// "p" a parameter to show, "v=presets"), so a view can be linked.

const $ = id => document.getElementById(id);
const kHealthPollMs = 5000;
const kOpenAllBelow = 60;  // groups this small show every section open
const kMaxResults = 100;

const view = {
  group: 0,
  entries: new Map(),    // parameter ID -> {p, row, cell, control, note, maps}
  selectors: new Set(),  // IDs whose change re-maps a generic of the view
};
let groups = [];
let index = null;  // [ID name, name, short name, group, menu] of every parameter
let unitWatch = new Set();
let presets = [];

function api(method, path, body, raw) {
  const options = { method: method, headers: {} };
  if (body !== undefined) {
    options.headers["Content-Type"] = raw ? "application/octet-stream" : "application/json";
    options.body = raw ? body : JSON.stringify(body);
  }
  return fetch(path, options).then(r => {
    const type = r.headers.get("Content-Type") || "";
    const read = type.startsWith("application/json") ? r.json() : r.blob();
    return read.then(data => ({ status: r.status, data: data }));
  });
}

function element(tag, text, className) {
  const e = document.createElement(tag);
  if (text !== undefined) e.textContent = text;
  if (className) e.className = className;
  return e;
}

// --- who the unit is, link and health -------------------------------------

function showUnit() {
  api("GET", "/api/unit").then(r => {
    if (r.data.error) return;
    const u = r.data;
    $("unitName").textContent = u.system_name || "Unit settings";
    document.title = (u.system_name || "Unit") + " settings";
    $("product").textContent = u.product || "\u2013";
    $("version").textContent = u.software_version || "\u2013";
    $("serial").textContent = u.serial_number || "\u2013";
    $("address").textContent = u.ip_address || "\u2013";
    unitWatch = new Set(u.watch);
  }, () => {});
}

function showLink(connected) {
  const link = $("link");
  link.textContent = connected ? "configd connected" : "configd lost";
  link.className = connected ? "" : "down";
  // Nothing can be changed meanwhile, so nothing is offered.
  $("view").inert = !connected;
  $("banner").hidden = connected;
  $("banner").textContent = connected ? "" :
      "configd does not answer: settings cannot be read or changed, and values shown may be " +
      "out of date. The page reconnects by itself.";
}

// configd's health: a banner while it is not "ok" (a setting not on disk)
// or it cannot be asked. Checked on a short poll, on every change of the
// health parameter and whenever the link comes back.
function showHealth() {
  const banner = $("health");
  api("GET", "/api/health").then(r => {
    if (r.status === 503) {
      showLink(false);
      banner.hidden = true;
      return;
    }
    banner.hidden = r.data.ok;
    banner.textContent = r.data.ok ? "" :
        "Settings may not be kept over a restart: " + (r.data.message || r.data.error);
  }, () => {
    banner.hidden = false;
    banner.textContent = "configweb does not answer; reload the page once the unit is back.";
  });
}

// --- values and controls ---------------------------------------------------

function units(p) {
  const v = p.current || {};
  return v.units !== undefined ? v.units : p.descriptor.units || "";
}

// Whether the number shown differs from the store's: (raw - offset) / scale
// with a number of decimals.
function scaled(p) {
  const d = p.descriptor;
  if (p.current && p.current.raw !== undefined) return true;
  return (d.scale_by !== undefined && d.scale_by !== 1) || d.offset_by > 0 ||
      d.display_precision > 0;
}

// A store number as shown, for limits: "-60.0".
function shownNumber(p, raw) {
  const d = p.descriptor;
  if (!scaled(p)) return String(raw);
  return ((raw - (d.offset_by || 0)) / (d.scale_by || 1)).toFixed(d.display_precision || 0);
}

function shownText(p, v) {
  if (v.display !== undefined) return v.display;
  if (v.value_name !== undefined) return v.value_name;
  const u = units(p);
  return String(v.value) + (u ? " " + u : "");
}

function limits(p) {
  const d = p.descriptor;
  if (p.readonly || p.command) return "";
  if (d.kind === "string") return d.min_length + " to " + d.max_length + " characters";
  if (d.kind === "integer" || d.kind === "decimal")
    return shownNumber(p, d.min) + " to " + shownNumber(p, d.max) +
        (units(p) ? " " + units(p) : "") +
        (p.step > 1 && !scaled(p) ? ", step " + p.step : "");
  return "";
}

function setShown(entry, value) {
  if (!value) return;
  entry.p.current = Object.assign({}, entry.p.current, value);
  const c = entry.control;
  if (c.tagName === "OUTPUT") c.textContent = shownText(entry.p, value);
  else if (c.tagName === "SELECT") c.value = String(value.value);
  else if (c.tagName === "INPUT" && document.activeElement !== c) {
    // A scaled value with its decimals ("-3.0").
    const digits = entry.p.current.display_precision ?? entry.p.descriptor.display_precision;
    c.value = digits !== undefined && typeof value.value === "number" ?
        value.value.toFixed(digits) : String(value.value);
    c.removeAttribute("aria-invalid");
  }
}

function makeControl(p, labelId) {
  const d = p.descriptor;
  let c;
  if (p.command) {
    c = element("button", p.command.label, "danger");
    c.type = "button";
    c.addEventListener("click", () => confirmThen(p.command.label + "?", p.command.consequence,
        p.command.label, () => send(p, view.entries.get(p.id), p.command.value)));
    return c;
  }
  if (p.readonly) {
    c = element("output");
  } else if (d.kind === "enumeration") {
    c = element("select");
    for (const v of d.values) {
      const option = element("option", v.name);
      option.value = String(v.value);
      c.appendChild(option);
    }
  } else {
    c = element("input");
    if (d.kind === "string") {
      c.maxLength = d.max_length;
    } else {
      c.className = "num";
      c.inputMode = "decimal";
    }
  }
  c.name = p.param;
  c.setAttribute("aria-labelledby", labelId);
  if (!p.readonly) c.addEventListener("change", () => send(p, view.entries.get(p.id)));
  return c;
}

function showNote(entry, text, kind) {
  entry.note.textContent = text;
  entry.note.className = "note " + (kind || "");
  if (entry.control.tagName === "INPUT") {
    if (kind === "invalid" || kind === "refused") {
      entry.control.setAttribute("aria-invalid", "true");
    } else {
      entry.control.removeAttribute("aria-invalid");
    }
  }
}

// A number as typed ("-3.0", "-3.0 dB" in the value's own units), checked
// before anything is sent: {problem} with the reason it cannot be sent, or
// {number}. A scaled value finer than the store's step is refused by
// configd, which says so.
function readNumber(p, text) {
  const d = p.descriptor;
  const unit = units(p);
  const low = Number(shownNumber(p, d.min)), high = Number(shownNumber(p, d.max));
  const range = shownNumber(p, d.min) + " to " + shownNumber(p, d.max) + (unit ? " " + unit : "");
  if (text === "") return { problem: "Empty: enter a number from " + range + ". Nothing was sent." };
  const match = /^([-+]?(?:\d+\.?\d*|\.\d+))\s*(\S*)$/.exec(text);
  if (!match || (match[2] && match[2] !== unit))
    return { problem: "\u201c" + text + "\u201d is not a number" + (unit ? " in " + unit : "") +
        ". Nothing was sent." };
  const number = Number(match[1]);
  if (!scaled(p) && !Number.isInteger(number))
    return { problem: "Whole numbers only. Nothing was sent." };
  if (low <= high && (number < low || number > high))
    return { problem: match[1] + " is outside " + range + ". Nothing was sent." };
  return { number: number };
}

function send(p, entry, commandValue) {
  const d = p.descriptor;
  let value = commandValue;
  if (value === undefined) {
    const text = entry.control.value.trim();
    if (d.kind === "enumeration") value = Number(text);
    else if (d.kind === "string") value = entry.control.value;
    else {
      const typed = readNumber(p, text);
      if (typed.problem) return showNote(entry, typed.problem, "invalid");
      value = scaled(p) ? text : typed.number;
    }
  }
  showNote(entry, "sending\u2026");
  api("PUT", "/api/params/" + encodeURIComponent(p.param), { value: value }).then(r => {
    if (r.status === 409) {
      setShown(entry, r.data);
      return showNote(entry, "Refused by the unit; it kept " + shownText(p, r.data) + ".",
          "refused");
    }
    if (r.data.error) {
      if (entry.control.tagName === "SELECT") setShown(entry, p.current);
      return showNote(entry, r.data.error, "refused");
    }
    setShown(entry, r.data);
    showNote(entry, r.data.result === "accepted" ? "" : r.data.result === "clamped" ?
        "Limited to " + shownText(p, r.data) + "." : r.data.result, r.data.result);
  }, () => showNote(entry, "configweb does not answer; nothing was changed.", "refused"));
}

function mapsText(p) {
  return p.maps_to_name ? "now: " + p.maps_to_name : "";
}

// --- a group: sections, rows, duplicates ----------------------------------

// Sections follow the menu numbers' first part ("28.3" is in section 28),
// as the unit's own menus group them. A section is named by the words its
// parameters' names share at their start and end ("Mix Down 1 … Level",
// "SDI1 Level per channel", "Level Adjust"), or by its first parameter.
function sharedWords(lists) {
  let common = lists[0];
  for (const words of lists) {
    let n = 0;
    while (n < common.length && n < words.length && common[n] === words[n]) ++n;
    common = common.slice(0, n);
  }
  return common;
}

function sectionsOf(params) {
  const sections = [];
  let last = null;
  for (const p of params) {
    const key = String(p.menu_number || p.descriptor.menu_number || "").split(".")[0];
    if (!last || last.key !== key) {
      last = { key: key, params: [] };
      sections.push(last);
    }
    last.params.push(p);
  }
  for (const s of sections) {
    const names = s.params.map(p => (p.name || "").split(" "));
    const head = sharedWords(names);
    const tail = sharedWords(names.map((w, i) => w.slice(head.length).reverse()))
        .reverse();
    let title = head.join(" ").replace(/ Ch$/, " per channel");
    if (tail.length && title) title += " … " + tail.join(" ");
    const first = s.params[0].name || (s.params[0].command || {}).label || "";
    if (!head.length && tail.length) title = tail.join(" ");
    s.title = s.params.length > 1 && title ? title :
        first + (s.params.length > 1 ? " and more" : "");
  }
  return sections;
}

function labelOf(p, counts) {
  const name = p.name || (p.command ? p.command.label : p.param.replace("eParamID_", ""));
  return counts.get(p.name) > 1 ? name + " (menu " + p.descriptor.menu_number + ")" : name;
}

function renderRow(p, counts, body) {
  const row = element("tr");
  row.id = "row-" + p.param;
  const menu = element("td", p.descriptor.menu_number, "menu");
  const name = element("td", undefined, "name");
  const label = element("span", labelOf(p, counts));
  label.id = "name-" + p.param;
  name.appendChild(label);
  const maps = element("span", mapsText(p), "maps");
  name.appendChild(maps);
  const cell = element("td");
  const note = element("td", limits(p), "note");
  const entry = { p: p, row: row, cell: cell, note: note, maps: maps };
  entry.control = makeControl(p, label.id);
  cell.appendChild(entry.control);
  row.append(menu, name, cell, note);
  view.entries.set(p.id, entry);
  setShown(entry, p.current);
  body.appendChild(row);
}

// A large group comes in brief (names and menu numbers): an opened
// section asks for its parameters in full, with their values.
function renderSection(section, counts, details) {
  if (details.dataset.rendered) return Promise.resolve();
  details.dataset.rendered = "1";
  const group = view.group;
  const full = section.params.every(p => p.descriptor);
  const ready = full ? Promise.resolve(section.params) :
      api("GET", "/api/groups/" + group + "?section=" + section.key)
          .then(r => (r.data.error ? [] : r.data.params));
  return ready.then(params => {
    if (view.group !== group) return;
    section.params = params;
    const table = element("table");
    const head = element("thead");
    const titles = element("tr");
    for (const t of ["Menu", "Setting", "Value", "Limits and notes"]) {
      const th = element("th", t);
      th.scope = "col";
      titles.appendChild(th);
    }
    head.appendChild(titles);
    const body = element("tbody");
    for (const p of params) {
      renderRow(p, counts, body);
      if (p.selector) view.selectors.add(p.selector);
    }
    table.append(head, body);
    details.appendChild(table);
  }, () => { delete details.dataset.rendered; });
}

function showGroup(group, target) {
  const started = performance.now();
  const known = groups.find(g => g.group === group);
  const large = known && known.count >= kOpenAllBelow;
  return api("GET", "/api/groups/" + group + (large ? "?values=no" : "")).then(r => {
    const fetched = performance.now();
    if (r.data.error) {
      $("title").textContent = r.data.error;
      return;
    }
    if (view.group !== group) return;
    const sections = $("sections");
    sections.textContent = "";
    view.entries.clear();
    view.selectors.clear();
    $("title").textContent = r.data.name;
    $("summary").textContent = r.data.params.length + " settings";
    const counts = new Map();
    for (const p of r.data.params) counts.set(p.name, (counts.get(p.name) || 0) + 1);
    const all = sectionsOf(r.data.params);
    const filled = [];
    all.forEach((s, i) => {
      const details = element("details");
      const summary = element("summary", s.title);
      summary.appendChild(element("span", s.params.length + (s.params.length > 1 ?
          " settings" : " setting") + ", menu " + s.key, "hint"));
      details.appendChild(summary);
      details.addEventListener("toggle", () => {
        if (details.open) renderSection(s, counts, details);
      });
      const holds = target && s.params.some(p => p.param === target);
      if (r.data.params.length < kOpenAllBelow || holds || (!target && i === 0)) {
        details.open = true;
        filled.push(renderSection(s, counts, details));
      }
      sections.appendChild(details);
    });
    void sections.offsetHeight;  // the layout is part of the first view
    const rendered = performance.now();
    return Promise.all(filled).then(() => {
      void sections.offsetHeight;
      window.configwebRender = { group: group, fetchMs: fetched - started,
                                 renderMs: rendered - fetched,
                                 totalMs: performance.now() - started };
      const row = target && document.getElementById("row-" + target);
      if (row) {
        row.className = "target";
        row.scrollIntoView({ block: "center" });
        const control = row.querySelector("input, select, button");
        if (control) control.focus();
      }
    });
  });
}

// The generics of the view stand for another parameter when a selector
// changed: their labels, values and whether they can be edited follow.
let remapping = 0;  // 0 idle, 1 asking, 2 asking and asked again meanwhile
function remap() {
  if (!view.group) return;
  if (remapping) {
    remapping = 2;
    return;
  }
  remapping = 1;
  const group = view.group;
  const done = () => {
    const again = remapping === 2;
    remapping = 0;
    if (again) remap();
  };
  api("GET", "/api/groups/" + group + "/mapping").then(r => {
    if (view.group === group && !r.data.error) {
      for (const m of r.data) {
        const entry = view.entries.get(m.id);
        if (!entry) continue;
        entry.p.maps_to_name = m.maps_to_name;
        entry.maps.textContent = mapsText(entry.p);
        if (m.readonly !== entry.p.readonly) {
          entry.p.readonly = m.readonly;
          entry.control = makeControl(entry.p, "name-" + entry.p.param);
          entry.cell.replaceChildren(entry.control);
          entry.note.textContent = limits(entry.p);
        }
        setShown(entry, m.current);
      }
    }
    done();
  }, done);
}

// --- search ----------------------------------------------------------------

function groupName(group) {
  const g = groups.find(x => x.group === group);
  return g ? g.name : "Group " + group;
}

function loadIndex() {
  if (index) return Promise.resolve(index);
  return api("GET", "/api/index").then(r => (index = r.data));
}

function showResults(query) {
  const q = query.trim().toLowerCase();
  loadIndex().then(rows => {
    if (q !== $("search").value.trim().toLowerCase()) return;
    const found = rows.filter(row => row[1].toLowerCase().includes(q) ||
        row[2].toLowerCase().includes(q) || row[0].toLowerCase().includes(q));
    $("title").textContent = "Settings matching \u201c" + query.trim() + "\u201d";
    $("summary").textContent = found.length === 0 ? "Nothing matches." :
        found.length + (found.length === 1 ? " setting" : " settings") +
        (found.length > kMaxResults ? ", the first " + kMaxResults + " shown" : "");
    const list = $("results");
    list.textContent = "";
    for (const row of found.slice(0, kMaxResults)) {
      const item = element("li");
      const link = element("a", row[1] || row[0].replace("eParamID_", ""));
      link.href = "#g=" + row[3] + "&p=" + encodeURIComponent(row[0]);
      link.appendChild(element("span", " \u2014 " + groupName(row[3]) + ", menu " + row[4] +
          " (" + row[2] + ")", "hint"));
      item.appendChild(link);
      list.appendChild(item);
    }
    list.hidden = false;
  });
}

// --- presets and reset ------------------------------------------------------

function presetSaid(text, refused) {
  $("presetResult").textContent = text;
  $("presetResult").className = "result" + (refused ? " refused" : "");
}

function presetChosen() {
  const n = Number($("slot").value);
  const slot = presets.find(s => s.preset === n);
  const usable = slot && slot.state !== "empty";
  $("recall").disabled = !usable;
  $("export").disabled = !usable;
  $("save").disabled = n === 0;
  $("import").disabled = n === 0;
  $("presetName").value = slot && n !== 0 ? slot.name : "";
  $("presetName").disabled = n === 0;
  if (slot && slot.state === "empty")
    presetSaid("Preset " + n + " is empty: there is nothing to recall or export.");
  else if (n === 0)
    presetSaid("Preset 0 holds the factory values: it can be recalled and exported only.");
  else presetSaid("");
}

function loadPresets() {
  return api("GET", "/api/presets").then(r => {
    if (r.data.error) return presetSaid(r.data.error, true);
    presets = r.data;
    const body = document.querySelector("#slots tbody");
    body.textContent = "";
    const slot = $("slot");
    const chosen = slot.value;
    slot.textContent = "";
    for (const s of presets) {
      const row = element("tr");
      row.id = "preset-" + s.preset;
      const state = s.state === "factory" ? "factory values" : s.state;
      row.append(element("td", String(s.preset)), element("td", s.name),
                 element("td", state, s.state));
      body.appendChild(row);
      const option = element("option", s.preset + ": " + s.name + " (" + state + ")");
      option.value = String(s.preset);
      slot.appendChild(option);
    }
    slot.value = chosen || "1";
    presetChosen();
  });
}

function presetOutcome(what, n, r) {
  if (r.data.error) {
    return presetSaid("Preset " + n + " was not " + what + ": " + r.data.error, true);
  }
  const done = r.status === 200;
  presetSaid((done ? "" : "Preset " + n + " was not " + what + ": ") + r.data.result +
      (r.data.message ? " \u2014 " + r.data.message : "") + ".", !done);
}

function savePreset(event) {
  event.preventDefault();
  const n = Number($("slot").value);
  const name = $("presetName").value.trim();
  presetSaid("Saving preset " + n + "\u2026");
  api("POST", "/api/presets/" + n + "/save", name ? { name: name } : undefined).then(r => {
    presetOutcome("saved", n, r);
    return loadPresets().then(() => presetOutcome("saved", n, r));
  });
}

function recallPreset() {
  const n = Number($("slot").value);
  presetSaid("Recalling preset " + n + "\u2026");
  api("POST", "/api/presets/" + n + "/recall").then(r => {
    presetOutcome("recalled", n, r);
    if (r.status !== 200) loadPresets().then(() => presetOutcome("recalled", n, r));
  });
}

function exportPreset() {
  const n = Number($("slot").value);
  api("GET", "/api/presets/" + n + "/file").then(r => {
    if (r.status !== 200) return presetOutcome("exported", n, r);
    const link = element("a");
    link.href = URL.createObjectURL(r.data);
    link.download = "preset_" + n + ".bin";
    document.body.appendChild(link);
    link.click();
    link.remove();
    presetSaid("Preset " + n + " exported as " + link.download + ".");
  });
}

function importPreset(event) {
  event.preventDefault();
  const n = Number($("slot").value);
  const file = $("importFile").files[0];
  if (!file) return presetSaid("Choose a preset file first.", true);
  presetSaid("Importing " + file.name + " into preset " + n + "\u2026");
  api("PUT", "/api/presets/" + n + "/file", file, true).then(r => {
    presetOutcome("imported", n, r);
    return loadPresets().then(() => presetOutcome("imported", n, r));
  });
}

function factoryReset(kind) {
  const hard = kind === "hard";
  confirmThen(hard ? "Hard factory reset?" : "Factory reset?", hard ?
      "Every setting returns to its factory value, the network settings and system name " +
      "included, and every saved preset is erased. The unit may become unreachable at its " +
      "current address." :
      "Every setting returns to its factory value, except the network settings and the " +
      "system name. Saved presets are kept.",
      hard ? "Erase everything" : "Reset the settings", () => {
        presetSaid("Resetting\u2026");
        api("POST", "/api/reset/" + kind).then(r => {
          presetSaid(r.data.error ? "The reset failed: " + r.data.error :
              r.status === 200 ? "Factory reset done." : "The reset failed: " + r.data.message,
              r.status !== 200);
          loadPresets();
        });
      });
}

// --- the confirmation dialog -----------------------------------------------

function confirmThen(title, consequence, yes, action) {
  const dialog = $("confirm");
  $("confirmTitle").textContent = title;
  $("confirmText").textContent = consequence;
  $("confirmYes").textContent = yes;
  dialog.onclose = () => {
    if (dialog.returnValue === "yes") action();
  };
  dialog.returnValue = "";
  dialog.showModal();
  $("confirmNo").focus();
}

// --- navigation --------------------------------------------------------------

function hashState() {
  return new URLSearchParams(location.hash.slice(1));
}

function route() {
  const state = hashState();
  const query = state.get("q") || "";
  const group = Number(state.get("g")) || 0;
  const presetsView = state.get("v") === "presets";
  if ($("search").value !== query && document.activeElement !== $("search"))
    $("search").value = query;
  for (const a of document.querySelectorAll("nav a")) {
    const chosen = presetsView ? a.dataset.view === "presets" : Number(a.dataset.group) === group;
    if (chosen && !query) a.setAttribute("aria-current", "page");
    else a.removeAttribute("aria-current");
  }
  $("results").hidden = !query;
  $("sections").hidden = !!query || presetsView;
  $("presets").hidden = !!query || !presetsView;
  if (query) return showResults(query);
  if (presetsView) {
    view.group = 0;
    view.entries.clear();
    $("title").textContent = "Presets and factory reset";
    $("summary").textContent = "";
    return loadPresets();
  }
  view.group = group;
  if (group) return showGroup(group, state.get("p"));
  $("title").textContent = "Choose a menu";
}

function navigate(params) {
  const hash = "#" + new URLSearchParams(params).toString();
  if (location.hash !== hash) location.hash = hash;
  else route();
}

function loadGroups() {
  return api("GET", "/api/groups").then(r => {
    if (r.data.error) return;
    groups = r.data;
    const list = $("groups");
    list.textContent = "";
    const add = (text, count, href, data) => {
      const a = element("a", text);
      if (count !== undefined) a.appendChild(element("span", String(count)));
      a.href = href;
      Object.assign(a.dataset, data);
      const item = element("li");
      item.appendChild(a);
      list.appendChild(item);
      return a;
    };
    for (const g of groups) add(g.name, g.count, "#g=" + g.group, { group: g.group }).id =
        "group-" + g.group;
    add("Presets and reset", undefined, "#v=presets", { view: "presets" }).id = "group-presets";
    route();
  });
}

// --- the live stream ---------------------------------------------------------

function showChange(change, flash) {
  if (change.param === "eParamID_OwnerHealth") showHealth();
  if (unitWatch.has(change.id)) showUnit();
  if (view.selectors.has(change.id)) remap();
  const entry = view.entries.get(change.id);
  if (!entry) return;
  setShown(entry, change);
  if (!flash) return;
  entry.row.classList.remove("changed");
  void entry.row.offsetWidth;
  entry.row.classList.add("changed");
}

function listen() {
  const events = new EventSource("/api/events");
  events.addEventListener("daemon", e => {
    const state = JSON.parse(e.data);
    showLink(state.connected);
    showHealth();
    if (state.connected) {
      showUnit();
      if (view.group) showGroup(view.group);
    }
  });
  // A frame holds the latest value of each parameter that changed since
  // the last one.
  events.onmessage = e => {
    for (const change of JSON.parse(e.data)) showChange(change, true);
  };
  // Changes were missed: the frame has every current value, and the group
  // is read again for the rest.
  events.addEventListener("resync", e => {
    const state = JSON.parse(e.data);
    showLink(state.connected);
    for (const change of state.values) showChange(change, false);
    if (state.connected && view.group) showGroup(view.group);
  });
  events.onerror = () => showLink(false);
}

$("search").addEventListener("input", () => {
  const q = $("search").value;
  const state = hashState();
  const params = q.trim() ? { q: q } : (state.get("g") ? { g: state.get("g") } : {});
  history.replaceState(null, "", "#" + new URLSearchParams(params).toString());
  route();
});
$("search").addEventListener("keydown", e => {
  if (e.key === "Escape") {
    $("search").value = "";
    navigate(view.group ? { g: view.group } : {});
  } else if (e.key === "Enter" || e.key === "ArrowDown") {
    const first = document.querySelector("#results a");
    if (first) {
      e.preventDefault();
      first.focus();
    }
  }
});
document.addEventListener("keydown", e => {
  const typing = /^(INPUT|SELECT|TEXTAREA)$/.test(document.activeElement.tagName);
  if (e.key === "/" && !typing) {
    e.preventDefault();
    $("search").focus();
  }
});
$("results").addEventListener("click", () => { $("search").value = ""; });
$("presetForm").addEventListener("submit", savePreset);
$("importForm").addEventListener("submit", importPreset);
$("slot").addEventListener("change", presetChosen);
$("recall").addEventListener("click", recallPreset);
$("export").addEventListener("click", exportPreset);
$("factory").addEventListener("click", () => factoryReset("factory"));
$("hardFactory").addEventListener("click", () => factoryReset("hard"));
window.addEventListener("hashchange", route);

listen();
loadGroups();
showUnit();
showHealth();
setInterval(showHealth, kHealthPollMs);
