// Subscribes to a topic, prints the first values as JSON lines, and unsubscribes.
//
//     node viewer.mjs URL TOPIC COUNT

import { createRequire } from "node:module";

const require = createRequire(`${process.env.VIEWER_MODULES}/`);
const { FoxgloveClient } = require("@foxglove/ws-protocol");
const WebSocket = require("ws");

const [url, topic, count] = process.argv.slice(2);
const client = new FoxgloveClient({ ws: new WebSocket(url, [FoxgloveClient.SUPPORTED_SUBPROTOCOL]) });
const print = (record) => console.log(JSON.stringify(record));
let subscription;
let received = 0;
let afterwards = 0;

client.on("serverInfo", ({ name, capabilities }) => print({ serverInfo: name, capabilities }));
client.on("error", (error) => {
  print({ error: String(error) });
  process.exit(1);
});
client.on("advertise", (channels) => {
  const channel = channels.find((each) => each.topic === topic);
  if (channel && subscription === undefined) {
    print({ advertised: channel });
    subscription = client.subscribe(channel.id);
  }
});
client.on("message", ({ subscriptionId, timestamp, data }) => {
  if (received === Number(count)) {
    ++afterwards;
    return;
  }
  print({ subscriptionId, time: timestamp.toString(), message: JSON.parse(new TextDecoder().decode(data)) });
  if (++received === Number(count)) {
    client.unsubscribe(subscription);
    // Messages that were on their way may still come; then there must be silence, except for the time.
    setTimeout(() => {
      afterwards = 0;
      setTimeout(() => {
        print({ afterwards });
        client.close();
        process.exit(0);
      }, 500);
    }, 200);
  }
});
