#!/usr/bin/env node
// A complete session with a club's records by way of `tavi rpc`.
//
// Usage: session.js TAVI FOLDER     (the command, and an empty folder for the club)
"use strict";
const { spawn, execFileSync } = require("child_process");
const readline = require("readline");

/** The component's operations: await club.call("FindMember", {Name: "Smith"}) gives the reply's members. */
class Club {
  constructor(tavi, folder) {
    this.process = spawn(tavi, ["--db", folder, "--today", "2026-01-15", "rpc"], { stdio: ["pipe", "pipe", "inherit"] });
    this.lines = readline.createInterface({ input: this.process.stdout })[Symbol.asyncIterator]();
    this.lastId = 0;
  }

  send(message) {
    this.process.stdin.write(JSON.stringify(message) + "\n");
  }

  async receive() {
    for (;;) {
      const message = JSON.parse((await this.lines.next()).value);
      if (Array.isArray(message) || "id" in message) return message;
      console.log(message.method, message.params); // a message box
    }
  }

  async call(method, params = {}) {
    this.send({ jsonrpc: "2.0", id: ++this.lastId, method, params });
    const reply = await this.receive();
    if (reply.error) throw Object.assign(new Error(reply.error.message), { code: reply.error.code, source: reply.error.data });
    return reply.result;
  }

  close() {
    this.process.stdin.end();
    return new Promise((resolve) => this.process.on("close", resolve));
  }
}

async function main() {
  const [tavi, folder] = process.argv.slice(2);
  execFileSync(tavi, ["--db", folder, "new", "--name", "Example Bridge Club"]);
  const club = new Club(tavi, folder);
  console.log("Club:", (await club.call("get_ClubName")).return);

  const numbers = [];
  for (const [FirstName, LastName] of [["Anna", "Smith"], ["Ben", "O'Neil"], ["Zoë", "Łukasz"], ["Dan", "Müller"]])
    numbers.push((await club.call("AddNewMember", { FirstName, Initials: "", LastName })).return);
  console.log("Members: [" + numbers.join(", ") + "]");
  await club.call("SetHandicap", { MemberID: 1, NewHandicap: 55.5 });
  try {
    await club.call("AddNewMember", { FirstName: "Anna", Initials: "", LastName: "Smith" });
  } catch (error) {
    console.log("Refused:", error.message, error.code, error.source);
  }

  console.log("Found:", (await club.call("FindMember", { Name: "zoë łukasz" })).return);
  const matches = await club.call("FindNearestMatches", { Name: "Anna Smyth" });
  console.log("Sounds like: [" + matches.return.join(", ") + "] from", matches.LowerBound);

  let walk = await club.call("GetFirstMember", { NameFormat: 0 });
  while (walk.return) {
    console.log(`  ${walk.Number} ${walk.Name} ${walk.ParScore.toFixed(1)}`);
    walk = await club.call("GetNextMember", { NameFormat: 0 });
  }
  await club.call("EndGet");

  await club.call("AddRegularPair", { Player1MembershipNo: 1, Player2MembershipNo: 2 });
  const pair = { Player1ID: 1, Player1Name: "", Player2ID: 2, Player2Name: "", NameFormat: 0 };
  console.log("Pair:", (await club.call("GetPairName", pair)).return);

  const settings = (await club.call("get_HandicalcOptions")).return;
  settings.MaxWeeks = 26;
  await club.call("put_HandicalcOptions", { value: settings });

  const competition = (
    await club.call("SetCompetitionEx", {
      CompName: "Monday Pairs", CompDate: "2026-01-12", Individual: false, ScoringMethod: 0, ButlerType: 0,
      IsSwiss: false, QualiFinal: false, MasterPointsLevel: 1, NumberOfTables: 4, NumberOfWinners: 1, Gov: "EBU",
      MasterPointsColour: 0, IncludeInHandicaps: true,
    })
  ).return;
  for (const [Player1ID, Player2ID, percent] of [[1, 2, 61.25], [3, 4, 38.75]])
    await club.call("NoteCompetitorResult", {
      CompetitionID: competition, Player1ID, P1Name: "", Player2ID, P2Name: "", ActualPercent: percent,
      NetPercent: percent,
    });
  await club.call("EndResultUpdate", { CompetitionID: competition });
  const handicaps = (
    await club.call("CalculateHandicaps", {
      PlayerID: 1, PartnerID: 2, CompetitionName: "", CompetitionDate: "2000-01-01", Individual: false,
    })
  ).return;
  console.log("Handicap of the pair:", handicaps.PartnershipHandicap.toFixed(2));
  await club.call("CloseDatabase");

  club.send(numbers.map((number) => ({ jsonrpc: "2.0", id: number, method: "GetHandicap", params: [number] })));
  const replies = await club.receive();
  console.log("In one batch:", replies.map((reply) => reply.result.return.toFixed(2)).join(" "));
  await club.close();
}

main();
