// Numbers and times as the page shows them.

export function element(name, properties = {}, ...children) {
  const result = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    result.setAttribute(key, value);
  }
  result.append(...children);
  return result;
}

/** Sets a text only when it differs: an element that is left alone is not laid out again. */
export function setText(node, text) {
  if (node.textContent !== text) {
    node.textContent = text;
  }
}

/** Six significant digits; null is the protocol's NaN or infinity. */
export function formatNumber(value) {
  if (value === null || value === undefined) {
    return "no number";
  }
  return String(Number(value.toPrecision(6)));
}

/** Model time, as hours, minutes and seconds from one minute on. */
export function formatTime(seconds) {
  if (seconds < 60) {
    return `${Number(seconds.toFixed(3))} s`;
  }
  const whole = Math.floor(seconds);
  const two = (number) => String(number).padStart(2, "0");
  return `${Math.floor(whole / 3600)}:${two(Math.floor(whole / 60) % 60)}:${two(whole % 60)}`;
}
