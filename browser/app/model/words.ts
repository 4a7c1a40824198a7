// Small texts that several screens show.

/** "just now", "40 s ago", "5 min ago", "3 h ago". */
export function age(milliseconds: number): string {
  const seconds = Math.max(0, Math.round(milliseconds / 1000));
  if (seconds < 5) return "just now";
  if (seconds < 60) return `${seconds} s ago`;
  if (seconds < 3600) return `${Math.floor(seconds / 60)} min ago`;
  return `${Math.floor(seconds / 3600)} h ago`;
}

/** "1 file", "2 files". */
export function counted(count: number, one: string, several = `${one}s`): string {
  return `${count.toLocaleString("en")} ${count === 1 ? one : several}`;
}

/** What a device calls itself in the list of paired devices: "iPad, Safari". */
export function deviceLabel(agent: string, touchPoints: number): string {
  const device = /iPhone/.test(agent)
    ? "iPhone"
    : /iPad/.test(agent) || (/Macintosh/.test(agent) && touchPoints > 1)
      ? "iPad" // which takes itself for a Mac
      : /Android/.test(agent)
        ? /Mobile/.test(agent)
          ? "Android phone"
          : "Android tablet"
        : /Macintosh/.test(agent)
          ? "Mac"
          : /Windows/.test(agent)
            ? "Windows"
            : /Linux|X11/.test(agent)
              ? "Linux"
              : "Device";
  const browsers: [RegExp, string][] = [
    [/Edg/, "Edge"],
    [/Firefox|FxiOS/, "Firefox"],
    [/Chrome|CriOS|Chromium/, "Chrome"],
    [/Safari/, "Safari"],
  ];
  const browser = browsers.find(([pattern]) => pattern.test(agent))?.[1];
  return browser ? `${device}, ${browser}` : device;
}
