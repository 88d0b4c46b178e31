// The widgets: gauge, lamp, display and trend. Each takes values as they come and draws when its update rate
// allows.

import { element, formatNumber, formatTime, setText } from "./format.js";

const SVG = "http://www.w3.org/2000/svg";
const DEFAULT_POINTS = 5000;

function svg(name, attributes) {
  const result = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) {
    result.setAttribute(key, value);
  }
  return result;
}

/** A range with round ends that contains all values so far; fixed where the widget gives its ends. */
class Range {
  constructor({ minimum, maximum }) {
    this.fixed = [minimum, maximum];
    this.low = Infinity;
    this.high = -Infinity;
  }

  add({ min, max }) {
    this.low = Math.min(this.low, min ?? Infinity);
    this.high = Math.max(this.high, max ?? -Infinity);
  }

  get ends() {
    const low = Number.isFinite(this.low) ? this.low : 0;
    const high = Number.isFinite(this.high) ? this.high : 1;
    const step = 10 ** Math.floor(Math.log10(Math.max(high - low, Math.abs(high) * 0.1, 1e-9)));
    return [
      this.fixed[0] ?? Math.floor(low / step) * step,
      this.fixed[1] ?? Math.max(Math.ceil(high / step) * step, Math.floor(low / step) * step + step),
    ];
  }
}

class Widget {
  #interval;
  #drawn = -Infinity;
  #isDirty = false;

  constructor(settings) {
    this.settings = settings;
    this.#interval = settings.updateRate > 0 ? 1000 / settings.updateRate : 0;
    this.heading = element("h3", {}, settings.title || "Untitled");
    this.heading.id = `title-${settings.uuid}`;
    this.node = element("article", {
      class: `widget ${this.kind}`,
      tabindex: "0",
      "aria-labelledby": this.heading.id,
      "data-uuid": settings.uuid,
    });
    this.node.append(this.heading);
    if (settings.channel === undefined) {
      this.node.append(element("p", { class: "unbound" }, "Not bound to a signal"));
      return;
    }
    this.node.append(element("p", { class: "signal" }, settings.signal));
    this.build();
  }

  get kind() {
    return "display";
  }

  take(time, value) {
    this.time = time;
    this.value = value;
    this.#isDirty = true;
    this.keep?.(time, value);
  }

  /** To be called before each frame. */
  frame(now) {
    // Frames come at slightly uneven times: a quarter of a frame too early is in time.
    if (this.#isDirty && now - this.#drawn >= this.#interval - 4) {
      this.#isDirty = false;
      this.#drawn = now;
      this.draw();
      this.node.dataset.value = String(this.value.value);
      this.node.dataset.time = String(this.time);
    }
  }

  build() {
    this.number = element("output", { class: "number", "aria-live": "off" }, "–");
    this.extremes = element("p", { class: "extremes" }, "");
    this.node.append(this.number, this.extremes);
  }

  draw() {
    setText(this.number, formatNumber(this.value.value));
    setText(this.extremes, `from ${formatNumber(this.value.min)} to ${formatNumber(this.value.max)} since the last message`);
  }

  refresh() {}
  remove() {
    this.node.remove();
  }
}

class Gauge extends Widget {
  get kind() {
    return "gauge";
  }

  build() {
    this.range = new Range(this.settings);
    const arc = "M 15 65 A 45 45 0 0 1 105 65";
    this.picture = svg("svg", { viewBox: "0 0 120 82", role: "meter", "aria-labelledby": this.heading.id });
    const scale = svg("path", { d: arc, class: "scale", fill: "none", "stroke-width": 9, pathLength: 100 });
    this.needle = svg("path", { d: arc, class: "needle", fill: "none", "stroke-width": 9, pathLength: 100 });
    this.reading = svg("text", { x: 60, y: 62, class: "reading", "text-anchor": "middle" });
    this.low = svg("text", { x: 15, y: 79, "text-anchor": "middle" });
    this.high = svg("text", { x: 105, y: 79, "text-anchor": "middle" });
    this.picture.append(scale, this.needle, this.reading, this.low, this.high);
    this.node.append(this.picture);
  }

  keep(_time, value) {
    this.range.add(value);
  }

  draw() {
    const [low, high] = this.range.ends;
    const value = this.value.value;
    const share = value === null ? 0 : Math.min(Math.max((value - low) / (high - low), 0), 1);
    this.needle.setAttribute("stroke-dasharray", `${share * 100} 200`);
    setText(this.reading, formatNumber(value));
    setText(this.low, formatNumber(low));
    setText(this.high, formatNumber(high));
    this.picture.setAttribute("aria-valuemin", low);
    this.picture.setAttribute("aria-valuemax", high);
    this.picture.setAttribute("aria-valuenow", value ?? low);
    this.picture.setAttribute("aria-valuetext", formatNumber(value));
  }
}

/** On when the value is a number other than 0. */
class Lamp extends Widget {
  get kind() {
    return "lamp";
  }

  build() {
    this.bulb = element("span", { class: "bulb", "aria-hidden": "true" });
    this.word = element("output", { "aria-live": "off" }, "–");
    this.node.append(element("p", { class: "light" }, this.bulb, this.word));
  }

  draw() {
    const value = this.value.value;
    const isOn = value !== null && value !== 0;
    this.bulb.classList.toggle("on", isOn);
    setText(this.word, `${isOn ? "on" : "off"} (${formatNumber(value)})`);
  }
}

class Trend extends Widget {
  get kind() {
    return "trend";
  }

  build() {
    this.times = [];
    this.values = [];
    this.limit = this.settings.maxPoints > 0 ? this.settings.maxPoints : DEFAULT_POINTS;
    this.summary = element("output", { class: "extremes", "aria-live": "off" }, "–");
    this.plot = element("div", { class: "plot", role: "img", "aria-labelledby": this.heading.id });
    this.node.append(this.plot, this.summary);
    this.observer = new ResizeObserver(() => this.refresh());
    this.observer.observe(this.plot);
  }

  keep(time, { value, min, max }) {
    if (this.times.length > 0 && time < this.times[this.times.length - 1]) {
      this.times.length = this.values.length = 0; // another run
    }
    // The extremes are points of the line, so that a peak between two messages is seen.
    if (min !== value || max !== value) {
      this.#push(time, min);
      this.#push(time, max);
    }
    this.#push(time, value);
    if (this.times.length > 2 * this.limit) {
      this.times.splice(0, this.times.length - this.limit);
      this.values.splice(0, this.values.length - this.limit);
    }
  }

  #push(time, value) {
    this.times.push(time);
    this.values.push(value);
  }

  /** Makes the plot anew: its size or the colours have changed. */
  refresh() {
    const { clientWidth: width, clientHeight: height } = this.plot;
    if (width === 0 || typeof window.uPlot === "undefined") {
      return;
    }
    this.chart?.destroy();
    const style = getComputedStyle(document.documentElement);
    const colour = (name) => style.getPropertyValue(name).trim();
    const axis = { stroke: colour("--quiet"), grid: { stroke: colour("--grid"), width: 1 }, ticks: { show: false } };
    this.chart = new window.uPlot(
      {
        width,
        height,
        pxAlign: 0,
        legend: { show: false },
        cursor: { show: false },
        scales: { x: { time: false } },
        axes: [{ ...axis, space: 80, values: (_plot, ticks) => ticks.map(formatTime) }, { ...axis, size: 56 }],
        series: [{}, { stroke: colour("--accent"), width: 1.5, points: { show: false } }],
      },
      this.#data(),
      this.plot,
    );
  }

  #data() {
    return this.times.length > this.limit
      ? [this.times.slice(-this.limit), this.values.slice(-this.limit)]
      : [this.times, this.values];
  }

  draw() {
    this.chart?.setData(this.#data());
    setText(this.summary, `${formatNumber(this.value.value)} at ${formatTime(this.time)}`);
  }

  remove() {
    this.observer?.disconnect();
    this.chart?.destroy();
    super.remove();
  }
}

const KINDS = { gauge: Gauge, lamp: Lamp, trend: Trend };

export function makeWidget(settings) {
  return new (KINDS[settings.type] ?? Widget)(settings);
}
