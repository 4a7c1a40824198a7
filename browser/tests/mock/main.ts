// `npm run mock`: the page on its own, to work on.
import { kTicket, MockServer } from "./server";

const server = new MockServer(process.env["NAVREL_ASSETS"] ?? "build/app/packed");
await server.start();
console.log(`${server.url}#p=${kTicket}`);
