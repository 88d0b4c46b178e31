// The diagram's picture, with values at the observed ports.

import { formatNumber, setText } from "./format.js";

const OBSERVED = /[●◉]/; // the marks of observed ports in the picture

export class Diagram {
  #container;
  #labels = new Map(); // channel to text element

  constructor(container) {
    this.#container = container;
  }

  showPicture(source) {
    const parsed = new DOMParser().parseFromString(source, "image/svg+xml");
    const picture = document.importNode(parsed.documentElement, true);
    picture.setAttribute("role", "img");
    picture.setAttribute("aria-label", "Block diagram; the table below has the values as text");
    this.#container.replaceChildren(picture);
    this.#labels.clear();
  }

  showNone() {
    const text = document.createElement("p");
    text.textContent = "There is no picture: the diagram is too large, or Graphviz is missing.";
    this.#container.replaceChildren(text);
    this.#labels.clear();
  }

  /** Puts a label at each marked port. */
  mark(marks) {
    this.#labels.forEach((label) => label.remove());
    this.#labels.clear();
    const nodes = new Map();
    for (const node of this.#container.querySelectorAll("g.node")) {
      nodes.set(node.querySelector("title")?.textContent, node);
    }
    for (const { channel, node, port } of marks) {
      const texts = nodes.get(node)?.querySelectorAll("text") ?? [];
      const cell = [...texts].find(
        ({ textContent: text }) => OBSERVED.test(text) && text.replace(OBSERVED, "").trim() === port.trim(),
      );
      if (cell) {
        this.#labels.set(channel, this.#labelAt(cell));
      }
    }
  }

  #labelAt(cell) {
    const label = document.createElementNS("http://www.w3.org/2000/svg", "text");
    const box = cell.getBBox();
    label.setAttribute("x", box.x + box.width + 4);
    label.setAttribute("y", box.y);
    label.setAttribute("class", "value");
    cell.ownerSVGElement.querySelector("g.graph").append(label);
    return label;
  }

  show(channel, { value }) {
    const label = this.#labels.get(channel);
    if (label) {
      setText(label, formatNumber(value));
    }
  }
}
