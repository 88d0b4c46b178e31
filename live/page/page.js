// The page: follows the server's scene, and hands values to widgets, diagram and table.

import { Connection, load } from "./connection.js";
import { Diagram } from "./diagram.js";
import { element, formatNumber, formatTime, setText } from "./format.js";
import { makeWidget } from "./widgets.js";

const TABLE_INTERVAL = 250; // ms between two updates of diagram and table

const byId = (id) => document.getElementById(id);
const diagram = new Diagram(byId("diagram"));
const widgets = new Map(); // uuid to widget
const widgetsOf = new Map(); // channel to widgets
const cells = new Map(); // channel to cell of the table
const changed = new Map(); // channel to value that diagram and table do not show yet
let pictureVersion = -1;
let tableShown = 0;

function showWidgets(settings) {
  const present = new Set(settings.map(({ uuid }) => uuid));
  for (const [uuid, widget] of widgets) {
    if (!present.has(uuid)) {
      widget.remove();
      widgets.delete(uuid);
    }
  }
  widgetsOf.clear();
  settings.forEach((each, place) => {
    let widget = widgets.get(each.uuid);
    if (!widget || JSON.stringify(widget.settings) !== JSON.stringify(each)) {
      const former = widget;
      widget = makeWidget(each);
      widgets.set(each.uuid, widget);
      former?.remove();
    }
    const container = byId("widgets");
    if (container.children[place] !== widget.node) {
      container.insertBefore(widget.node, container.children[place] ?? null);
    }
    if (each.channel !== undefined) {
      widgetsOf.set(each.channel, [...(widgetsOf.get(each.channel) ?? []), widget]);
    }
  });
  byId("empty").hidden = settings.length > 0;
}

function showTable(channels, marks) {
  const marked = new Set(marks.map(({ channel }) => channel));
  const shown = channels.filter(({ id }) => marked.has(id)).slice(0, 500);
  const rows = shown.map(({ id, topic }) => {
    const cell = element("td", {}, cells.get(id)?.textContent ?? "–");
    return [id, cell, element("tr", {}, element("td", {}, topic), cell)];
  });
  cells.clear();
  rows.forEach(([id, cell]) => cells.set(id, cell));
  byId("signals").replaceChildren(...rows.map(([, , row]) => row));
}

async function showPicture(version) {
  if (version === pictureVersion) {
    return;
  }
  pictureVersion = version;
  if (version === 0) {
    diagram.showNone();
  } else {
    diagram.showPicture(await (await load("picture.svg")).text());
  }
}

async function showScene() {
  const scene = await (await load("scene.json")).json();
  setText(byId("model"), scene.model);
  document.title = `${scene.model} – live values`;
  setText(byId("state"), scene.state);
  byId("state").classList.toggle("bad", !["ready", "running", "paused", "ended"].includes(scene.state));
  showWidgets(scene.widgets);
  showTable(scene.channels, scene.marks);
  await showPicture(scene.picture);
  diagram.mark(scene.marks);
  connection.want([...widgetsOf.keys(), ...cells.keys()]);
}

// Scenes that come while one is loaded are loaded once, after it.
let isLoading = false;
let isOutdated = false;
async function loadScene() {
  isOutdated = true;
  while (isOutdated && !isLoading) {
    isOutdated = false;
    isLoading = true;
    try {
      await showScene();
    } catch (error) {
      setText(byId("notice"), String(error));
    }
    isLoading = false;
  }
}

function setConnected(isConnected) {
  setText(byId("connection"), isConnected ? "connected" : "not connected; trying again");
  byId("connection").classList.toggle("bad", !isConnected);
}

const connection = new Connection({
  opened: () => setConnected(true),
  closed: () => setConnected(false),
  scene: loadScene,
  status: (text) => setText(byId("notice"), text),
  time: (time) => setText(byId("time"), formatTime(time)),
  value(channel, time, value) {
    widgetsOf.get(channel)?.forEach((widget) => widget.take(time, value));
    changed.set(channel, value);
  },
});

let frames = 0;
function frame(now) {
  widgets.forEach((widget) => widget.frame(now));
  if (now - tableShown >= TABLE_INTERVAL) {
    tableShown = now;
    for (const [channel, value] of changed) {
      diagram.show(channel, value);
      const cell = cells.get(channel);
      if (cell) {
        setText(cell, formatNumber(value.value));
      }
    }
    changed.clear();
  }
  document.documentElement.dataset.frames = String(++frames);
  requestAnimationFrame(frame);
}
requestAnimationFrame(frame);

matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => widgets.forEach((widget) => widget.refresh()));
