// The connection to the server: the Foxglove WebSocket protocol, and the message "scene" of the server's own.

const MESSAGE_DATA = 1;
const TIME = 2;
const FIRST_PAUSE = 500; // ms before the next attempt to connect
const LONGEST_PAUSE = 8000;

/** The token, which is in the address' fragment so that no log has it. */
export const token = new URLSearchParams(location.hash.slice(1)).get("token") ?? "";

export async function load(path) {
  const headers = token ? { Authorization: `Bearer ${token}` } : {};
  const response = await fetch(path, { headers, cache: "no-store" });
  if (!response.ok) {
    throw new Error(`${path}: ${response.status} ${await response.text()}`);
  }
  return response;
}

/**
 * Calls `opened()`, `closed()`, `scene()`, `value(channel, time, {value, min, max})`, `time(time)` and
 * `status(text)` of its listener; times are seconds.
 */
export class Connection {
  #listener;
  #socket;
  #pause = FIRST_PAUSE;
  #advertised = new Set();
  #subscribed = new Set();
  #wanted = new Set();
  #decoder = new TextDecoder();

  constructor(listener) {
    this.#listener = listener;
    this.#connect();
  }

  /** The channels whose values are needed from now on. */
  want(channels) {
    this.#wanted = new Set(channels);
    this.#subscribe();
  }

  #connect() {
    const scheme = location.protocol === "https:" ? "wss" : "ws";
    const query = token ? `?token=${encodeURIComponent(token)}` : "";
    const socket = new WebSocket(`${scheme}://${location.host}/page${query}`, ["foxglove.sdk.v1"]);
    socket.binaryType = "arraybuffer";
    socket.onopen = () => {
      this.#pause = FIRST_PAUSE;
      this.#listener.opened();
    };
    socket.onmessage = ({ data }) => (typeof data === "string" ? this.#text(JSON.parse(data)) : this.#binary(data));
    socket.onclose = () => {
      this.#advertised.clear();
      this.#subscribed.clear();
      this.#listener.closed();
      setTimeout(() => this.#connect(), this.#pause);
      this.#pause = Math.min(this.#pause * 2, LONGEST_PAUSE);
    };
    this.#socket = socket;
  }

  #text(message) {
    switch (message.op) {
      case "advertise":
        for (const channel of message.channels) {
          this.#advertised.add(channel.id);
        }
        this.#subscribe();
        break;
      case "unadvertise":
        for (const id of message.channelIds) {
          this.#advertised.delete(id);
          this.#subscribed.delete(id);
        }
        break;
      case "scene":
        this.#listener.scene();
        break;
      case "status":
        this.#listener.status(message.message);
        break;
    }
  }

  #binary(data) {
    const view = new DataView(data);
    if (view.getUint8(0) === TIME) {
      this.#listener.time(Number(view.getBigUint64(1, true)) / 1e9);
    } else if (view.getUint8(0) === MESSAGE_DATA) {
      const channel = view.getUint32(1, true); // subscriptions have their channel's number
      const time = Number(view.getBigUint64(5, true)) / 1e9;
      this.#listener.value(channel, time, JSON.parse(this.#decoder.decode(new Uint8Array(data, 13))));
    }
  }

  #subscribe() {
    const added = [...this.#wanted].filter((id) => this.#advertised.has(id) && !this.#subscribed.has(id));
    const removed = [...this.#subscribed].filter((id) => !this.#wanted.has(id));
    if (removed.length > 0) {
      this.#send({ op: "unsubscribe", subscriptionIds: removed });
      removed.forEach((id) => this.#subscribed.delete(id));
    }
    for (let i = 0; i < added.length; i += 500) {
      const subscriptions = added.slice(i, i + 500).map((id) => ({ id, channelId: id }));
      this.#send({ op: "subscribe", subscriptions });
    }
    added.forEach((id) => this.#subscribed.add(id));
  }

  #send(message) {
    this.#socket.send(JSON.stringify(message));
  }
}
