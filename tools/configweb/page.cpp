#include "configweb/page.h"

namespace configweb {

namespace {

// clang-format off
constexpr const char kPage[] = R"PAGE(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Unit settings</title>
<style>
body { margin: 0; font: 14px/1.4 system-ui, sans-serif; color: #1d2329; background: #f3f5f7; }
header { display: flex; align-items: center; gap: 1em; padding: .6em 1em; background: #1f3b57; color: #fff; }
header h1 { font-size: 1.1em; margin: 0; }
#link { margin-left: auto; padding: .2em .7em; border-radius: 1em; background: #2e7d32; }
#link.down { background: #c62828; }
main { display: flex; min-height: calc(100vh - 2.6em); }
nav { width: 13em; background: #e3e8ed; padding: .5em 0; }
nav button { display: block; width: 100%; text-align: left; border: 0; background: none; padding: .45em 1em; font: inherit; cursor: pointer; }
nav button.chosen { background: #1f3b57; color: #fff; }
section { flex: 1; padding: 1em 1.5em; }
table { border-collapse: collapse; width: 100%; background: #fff; }
th, td { text-align: left; padding: .35em .6em; border-bottom: 1px solid #e0e4e8; vertical-align: middle; }
th { background: #f7f9fa; font-weight: 600; }
td.menu { color: #6b7780; width: 4em; }
td.hint, span.hint { color: #6b7780; font-size: .9em; }
tr.changed td { animation: flash 1.2s; }
@keyframes flash { from { background: #fff3b0; } to { background: transparent; } }
td.note { font-size: .9em; }
td.note.refused { color: #c62828; }
td.note.clamped { color: #a15c00; }
input[type=number] { width: 8em; }
#banner { display: none; padding: .6em 1em; background: #c62828; color: #fff; }
#banner.shown, #health.shown { display: block; }
#health { display: none; padding: .6em 1em; background: #a15c00; color: #fff; }
#presets { margin: 1.2em 0 0; padding: .8em; background: #fff; border: 1px solid #e0e4e8; }
</style>
</head>
<body>
<header><h1>Unit settings</h1><span id="link">connecting</span></header>
<div id="banner">The connection to configd is lost; reconnecting. Values shown may be out of date.</div>
<div id="health" role="alert"></div>
<main>
<nav id="groups"></nav>
<section>
<h2 id="title">Choose a menu</h2>
<table id="params" hidden>
<thead><tr><th>Menu</th><th>Parameter</th><th>Value</th><th>Limits</th><th></th></tr></thead>
<tbody></tbody>
</table>
<div id="presets">Preset <input id="preset" type="number" min="0" max="40" value="1">
<button id="save">Save</button> <button id="recall">Recall</button> <span id="presetResult" class="hint"></span></div>
</section>
</main>
<script>
"use strict";
let current = 0;
const rows = new Map();  // parameter ID -> {descriptor, control, note, row}

function api(method, path, body) {
  const options = { method: method, headers: {} };
  if (body !== undefined) {
    options.headers["Content-Type"] = "application/json";
    options.body = JSON.stringify(body);
  }
  return fetch(path, options).then(r => r.json().then(data => ({ status: r.status, data: data })));
}

function showLink(connected) {
  const link = document.getElementById("link");
  link.textContent = connected ? "configd connected" : "configd lost";
  link.className = connected ? "" : "down";
  document.getElementById("banner").className = connected ? "" : "shown";
}

// configd's health: a banner while it is not "ok" (a setting not on disk)
// or configd cannot be asked. Checked on a short poll, on every change of
// the health parameter and whenever the link comes back.
const kHealthPollMs = 5000;
function showHealth() {
  api("GET", "/api/health").then(r => {
    const banner = document.getElementById("health");
    banner.textContent = r.data.ok ? "" : "configd health: " + (r.data.message || r.data.error);
    banner.className = r.data.ok ? "" : "shown";
  }, () => {
    const banner = document.getElementById("health");
    banner.textContent = "configweb does not answer";
    banner.className = "shown";
  });
}

function limits(p) {
  const d = p.descriptor;
  if (d.kind === "string") return d.min_length + " to " + d.max_length + " characters";
  if (d.kind === "integer" || d.kind === "decimal")
    return d.min + " to " + d.max + (d.units ? " " + d.units : "") +
        (p.step > 1 ? ", step " + p.step : "");
  return "";
}

function setShown(entry, value) {
  if (!value) return;
  const c = entry.control;
  if (document.activeElement === c && c.tagName === "INPUT") return;
  if (c.tagName === "SELECT" || c.tagName === "INPUT") c.value = String(value.value);
  else c.textContent = value.value_name !== undefined ? value.value_name : String(value.value);
}

function makeControl(p) {
  const d = p.descriptor;
  if (p.readonly) return document.createElement("span");
  if (d.kind === "enumeration") {
    const select = document.createElement("select");
    for (const v of d.values) {
      const option = document.createElement("option");
      option.value = String(v.value);
      option.textContent = v.name;
      select.appendChild(option);
    }
    return select;
  }
  const input = document.createElement("input");
  if (d.kind === "string") {
    input.type = "text";
    input.minLength = d.min_length;
    input.maxLength = d.max_length;
  } else {
    input.type = "number";
    input.min = d.min;
    input.max = d.max;
    input.step = p.step || 1;
  }
  return input;
}

function send(p, entry) {
  const d = p.descriptor;
  const text = entry.control.value;
  const value = d.kind === "string" ? text : Number(text);
  api("PUT", "/api/params/" + encodeURIComponent(p.param), { value: value }).then(r => {
    const note = entry.note;
    if (r.data.error) {
      note.textContent = r.data.error;
      note.className = "note refused";
      return;
    }
    setShown(entry, r.data);
    note.className = "note " + r.data.result;
    note.textContent = r.data.result === "accepted" ? "" :
        r.data.result + " (asked " + JSON.stringify(r.data.requested) + ")";
    if (r.status === 409) note.textContent = "refused; kept " + JSON.stringify(r.data.value);
  });
}

function showGroup(group) {
  current = group;
  for (const b of document.querySelectorAll("nav button"))
    b.className = Number(b.dataset.group) === group ? "chosen" : "";
  api("GET", "/api/groups/" + group).then(r => {
    const body = document.querySelector("#params tbody");
    body.textContent = "";
    rows.clear();
    if (r.data.error) {
      document.getElementById("title").textContent = r.data.error;
      return;
    }
    document.getElementById("title").textContent = r.data.name;
    document.getElementById("params").hidden = false;
    for (const p of r.data.params) {
      const row = document.createElement("tr");
      row.id = p.param;
      const cells = [p.descriptor.menu_number, p.name, "", limits(p), ""].map(text => {
        const cell = document.createElement("td");
        cell.textContent = text;
        row.appendChild(cell);
        return cell;
      });
      if (p.maps_to) {
        const hint = document.createElement("span");
        hint.className = "hint";
        hint.textContent = " (now " + p.maps_to.replace("eParamID_", "") + ")";
        cells[1].appendChild(hint);
      }
      cells[0].className = "menu";
      cells[3].className = "hint";
      cells[4].className = "note";
      const entry = { param: p, control: makeControl(p), note: cells[4], row: row };
      entry.control.name = p.param;
      cells[2].appendChild(entry.control);
      if (!p.readonly) entry.control.addEventListener("change", () => send(p, entry));
      setShown(entry, p.current);
      rows.set(p.id, entry);
      body.appendChild(row);
    }
  });
}

function loadGroups() {
  api("GET", "/api/groups").then(r => {
    const nav = document.getElementById("groups");
    nav.textContent = "";
    for (const g of r.data) {
      const b = document.createElement("button");
      b.textContent = g.name;
      b.dataset.group = g.group;
      b.id = "group-" + g.group;
      b.addEventListener("click", () => showGroup(g.group));
      nav.appendChild(b);
    }
    if (current) showGroup(current);
  });
}

function preset(operation) {
  const n = document.getElementById("preset").value;
  const out = document.getElementById("presetResult");
  out.textContent = "working";
  api("POST", "/api/presets/" + n + "/" + operation).then(r => {
    out.textContent = r.data.error ? r.data.error : r.data.result;
  });
}
document.getElementById("save").addEventListener("click", () => preset("save"));
document.getElementById("recall").addEventListener("click", () => preset("recall"));

const events = new EventSource("/api/events");
events.addEventListener("daemon", e => {
  const state = JSON.parse(e.data);
  showLink(state.connected);
  showHealth();
  if (state.connected && current) showGroup(current);
});
// A frame holds the latest value of each parameter that changed since the
// last one.
function showChange(change, flash) {
  if (change.param === "eParamID_OwnerHealth") showHealth();
  const entry = rows.get(change.id);
  if (!entry) return;
  setShown(entry, change);
  if (!flash) return;
  entry.row.className = "";
  void entry.row.offsetWidth;
  entry.row.className = "changed";
}
events.onmessage = e => {
  for (const change of JSON.parse(e.data)) showChange(change, true);
};
// Changes were missed (the stream fell behind, or configweb's link to
// configd was re-made): the frame has every current value, and the group
// is read again for the rest.
events.addEventListener("resync", e => {
  const state = JSON.parse(e.data);
  showLink(state.connected);
  for (const change of state.values) showChange(change, false);
  if (state.connected && current) showGroup(current);
});
events.onerror = () => showLink(false);
loadGroups();
showHealth();
setInterval(showHealth, kHealthPollMs);
</script>
</body>
</html>
)PAGE";
// clang-format on

}  // namespace

const char* PageHtml() { return kPage; }

}  // namespace configweb
