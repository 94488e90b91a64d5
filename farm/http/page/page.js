"use strict";
// Texts from the farm become text nodes, never markup.

const Interval = 3000; // ms
const TokenKey = "quillstar-token";

const byId = (id) => document.getElementById(id);
let token = sessionStorage.getItem(TokenKey);
let timer = 0;
// Counts the sessions, so that an answer to an earlier one is dropped.
let session = 0;

class Refusal extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

async function request(path, options = {}) {
  const headers = token ? {Authorization: "Bearer " + token} : {};
  const answer = await fetch("/api/v1" + path, {...options, headers, cache: "no-store"});
  if (answer.ok)
    return answer;
  const body = await answer.json().catch(() => ({}));
  throw new Refusal(answer.status, body.message || "The farm answered with status " + answer.status + ".");
}

function setText(element, text) {
  if (element.textContent !== text)
    element.textContent = text;
}

// Fills the table in place, so that the focus and the selection stay where they are. A row is {key, cells}; a cell is a
// text, a number or a function that fills a new cell once.
function fill(table, rows) {
  const body = table.tBodies[0];
  const known = new Map([...body.rows].map((row) => [row.dataset.key, row]));
  rows.forEach(({key, cells}, place) => {
    let row = known.get(key);
    known.delete(key);
    if (!row) {
      row = document.createElement("tr");
      row.dataset.key = key;
      for (const cell of cells) {
        const element = row.insertCell();
        if (typeof cell === "number" || (cell && cell.isNumber))
          element.className = "number";
        if (typeof cell === "function")
          cell(element);
      }
    }
    cells.forEach((cell, column) => {
      if (typeof cell !== "function")
        setText(row.cells[column], String(cell));
    });
    if (body.rows[place] !== row)
      body.insertBefore(row, body.rows[place] || null);
  });
  for (const row of known.values())
    row.remove();
  table.hidden = rows.length === 0;
  table.parentElement.querySelector(".empty").hidden = rows.length !== 0;
}

function duration(seconds) {
  const parts = [Math.floor(seconds / 3600), Math.floor(seconds / 60) % 60, seconds % 60];
  return parts.map((part) => String(part).padStart(2, "0")).join(":");
}

function gibibytes(bytes) {
  return (bytes / 2 ** 30).toFixed(bytes < 2 ** 34 ? 2 : 0) + " GiB";
}

// Marks a text such as "3.5 GiB" as a number, so that it is aligned to the right like plain ones.
function numeric(text) {
  const value = new String(text);
  value.isNumber = true;
  return value;
}

function logButton(failure) {
  return (cell) => {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = "Show";
    button.setAttribute("aria-label", "Show the log of frame " + failure.frame + " of " + failure.name);
    button.addEventListener("click", () => showLog(failure));
    cell.append(button);
  };
}

async function showLog(failure) {
  const path = "/admin/jobs/" + encodeURIComponent(failure.job) + "/frames/" + failure.frame + "/log";
  byId("log-title").textContent = "Log of " + failure.name + ", frame " + failure.frame;
  byId("log-text").textContent = "Loading…";
  byId("log").showModal();
  try {
    byId("log-text").textContent = (await (await request(path)).text()) || "The renderer has written nothing.";
  } catch (refusal) {
    byId("log-text").textContent = refusal.message;
  }
}

// Describes all nodes together in words.
function clusterText(nodes, {time, message}) {
  if (!time)
    return message || "The cluster is being asked for its nodes.";
  const counts = new Map();
  for (const {state} of nodes)
    counts.set(state || "unknown", (counts.get(state || "unknown") || 0) + 1);
  const parts = [...counts].sort().map(([state, count]) => count + " " + state);
  return [message, "As of " + time + ": " + (parts.join(", ") || "no nodes") + "."].join(" ").trim();
}

function showNodes(nodes, cluster) {
  byId("nodes").className = cluster ? "" : "local";
  fill(byId("nodes"), nodes.map((node) => ({key: node.host, cells: [node.host, node.frames,
    [node.state || "unknown", node.detail].filter(Boolean).join(", "), node.reason,
    node.left_out.map(({type, message}) => type + ": " + message).join("; ")]})));
  setText(byId("nodes-text"), cluster ? clusterText(nodes, cluster) : "");
  byId("nodes-text").hidden = !cluster;
  byId("nodes-text").className = cluster && cluster.message ? "alarm" : "";
}

function show(overview) {
  fill(byId("queues"), overview.queues.map((queue) => ({key: queue.account, cells: [queue.account, queue.rendering,
    queue.running, queue.waiting, queue.paused, queue.arrears, queue.failed]})));
  fill(byId("hindrances"), overview.hindrances.map(({type, message}) => ({key: type, cells: [type, message]})));
  byId("hindrance-section").hidden = overview.hindrances.length === 0;
  fill(byId("working"), overview.working.map((frame) => ({key: frame.job + "/" + frame.frame,
    cells: [frame.host, frame.account, frame.name, frame.frame, numeric(duration(frame.seconds)),
      numeric(frame.percent === null ? "" : frame.percent + " %")]})));
  fill(byId("failures"), overview.failures.map((failure) => ({key: failure.job + "/" + failure.frame,
    cells: [failure.time, failure.account, failure.name, failure.frame, failure.message, logButton(failure)]})));
  showNodes(overview.nodes, overview.cluster);
  const {free, size, database} = overview.disk;
  const meter = byId("disk");
  meter.max = size;
  meter.high = size * 0.9;
  meter.value = size - free;
  setText(byId("disk-text"), gibibytes(free) + " of " + gibibytes(size) + " are free; the database takes "
    + gibibytes(database) + ".");
}

function setState(text, isAlarm = false) {
  setText(byId("state"), text);
  byId("state").className = isAlarm ? "alarm" : "";
}

function enter(isSignedIn) {
  ++session;
  clearTimeout(timer);
  byId("sign-in").hidden = isSignedIn;
  byId("overview").hidden = !isSignedIn;
  byId("sign-out").hidden = !isSignedIn;
  setState("");
  if (isSignedIn) {
    refresh();
  } else {
    byId("log").close();
    byId("name").select();
  }
}

function leave(message) {
  token = null;
  sessionStorage.removeItem(TokenKey);
  for (const table of document.querySelectorAll("main table"))
    table.tBodies[0].replaceChildren();
  byId("log-text").textContent = "";
  byId("nodes-text").textContent = "";
  byId("refusal").textContent = message;
  enter(false);
}

async function refresh() {
  const own = session;
  try {
    const answer = await (await request("/admin/overview")).json();
    if (own !== session)
      return;
    show(answer.data);
    setState("As of " + answer.data.time);
  } catch (refusal) {
    if (own !== session)
      return;
    if (refusal.status === 401)
      return leave("The session has ended. Sign in again.");
    if (refusal.status === 403) {
      request("/session", {method: "DELETE"}).catch(() => {});
      return leave("This account is not an administrator.");
    }
    setState("The farm does not answer; what is shown may be out of date.", true);
  }
  clearTimeout(timer);
  if (!document.hidden)
    timer = setTimeout(refresh, Interval);
}

async function signIn(event) {
  event.preventDefault();
  const body = JSON.stringify({username: byId("name").value, password: byId("password").value});
  byId("password").value = "";
  byId("refusal").textContent = "";
  try {
    token = null;
    const answer = await (await request("/session", {method: "POST", body})).json();
    token = answer.data.token;
    sessionStorage.setItem(TokenKey, token);
    enter(true);
  } catch (refusal) {
    byId("refusal").textContent = refusal.status ? refusal.message : "The farm does not answer.";
    byId("password").focus();
  }
}

byId("sign-in").addEventListener("submit", signIn);
byId("sign-out").addEventListener("click", () => {
  request("/session", {method: "DELETE"}).catch(() => {});
  leave("");
});
byId("log-close").addEventListener("click", () => byId("log").close());
document.addEventListener("visibilitychange", () => {
  // A hidden page asks for nothing.
  clearTimeout(timer);
  if (!document.hidden && token)
    refresh();
});
enter(Boolean(token));
