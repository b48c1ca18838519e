#!/usr/bin/env python3
"""A complete session with a club's records by way of `tavi rpc`.

Usage: session.py TAVI FOLDER     (the command, and an empty folder for the club)
"""
import json
import subprocess
import sys


class RpcError(Exception):
    def __init__(self, error):
        super().__init__(error["message"])
        self.code = error["code"]
        self.source = error.get("data", "")


class Club:
    """The component's operations as methods: club.FindMember(Name="Smith") gives the reply's members."""

    def __init__(self, tavi, folder):
        self.process = subprocess.Popen([tavi, "--db", folder, "--today", "2026-01-15", "rpc"], encoding="utf-8",
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.last_id = 0

    def send(self, message):
        self.process.stdin.write(json.dumps(message) + "\n")
        self.process.stdin.flush()

    def receive(self):
        while True:
            message = json.loads(self.process.stdout.readline())
            if isinstance(message, list) or "id" in message:
                return message
            print(message["method"], message["params"])  # a message box

    def call(self, method, params):
        self.last_id += 1
        self.send({"jsonrpc": "2.0", "id": self.last_id, "method": method, "params": params})
        reply = self.receive()
        if "error" in reply:
            raise RpcError(reply["error"])
        return reply["result"]

    def __getattr__(self, method):
        return lambda **arguments: self.call(method, arguments)

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def main():
    tavi, folder = sys.argv[1:3]
    subprocess.run([tavi, "--db", folder, "new", "--name", "Example Bridge Club"], check=True, capture_output=True)
    club = Club(tavi, folder)
    print("Club:", club.get_ClubName()["return"])

    numbers = [club.AddNewMember(FirstName=first, Initials="", LastName=last)["return"]
               for first, last in [("Anna", "Smith"), ("Ben", "O'Neil"), ("Zoë", "Łukasz"), ("Dan", "Müller")]]
    print("Members:", numbers)
    club.SetHandicap(MemberID=1, NewHandicap=55.5)
    try:
        club.AddNewMember(FirstName="Anna", Initials="", LastName="Smith")
    except RpcError as error:
        print("Refused:", error, error.code, error.source)

    print("Found:", club.FindMember(Name="zoë łukasz")["return"])
    matches = club.FindNearestMatches(Name="Anna Smyth")
    print("Sounds like:", matches["return"], "from", matches["LowerBound"])

    walk = club.GetFirstMember(NameFormat=0)
    while walk["return"]:
        print(f"  {walk['Number']} {walk['Name']} {walk['ParScore']:.1f}")
        walk = club.GetNextMember(NameFormat=0)
    club.EndGet()

    club.AddRegularPair(Player1MembershipNo=1, Player2MembershipNo=2)
    print("Pair:", club.GetPairName(Player1ID=1, Player1Name="", Player2ID=2, Player2Name="", NameFormat=0)["return"])

    settings = club.get_HandicalcOptions()["return"]
    settings["MaxWeeks"] = 26
    club.put_HandicalcOptions(value=settings)

    competition = club.SetCompetitionEx(
        CompName="Monday Pairs", CompDate="2026-01-12", Individual=False, ScoringMethod=0, ButlerType=0, IsSwiss=False,
        QualiFinal=False, MasterPointsLevel=1, NumberOfTables=4, NumberOfWinners=1, Gov="EBU", MasterPointsColour=0,
        IncludeInHandicaps=True)["return"]
    for first, second, percent in [(1, 2, 61.25), (3, 4, 38.75)]:
        club.NoteCompetitorResult(CompetitionID=competition, Player1ID=first, P1Name="", Player2ID=second, P2Name="",
                                  ActualPercent=percent, NetPercent=percent)
    club.EndResultUpdate(CompetitionID=competition)
    handicaps = club.CalculateHandicaps(PlayerID=1, PartnerID=2, CompetitionName="", CompetitionDate="2000-01-01",
                                        Individual=False)["return"]
    print("Handicap of the pair:", f"{handicaps['PartnershipHandicap']:.2f}")
    club.CloseDatabase()

    club.send([{"jsonrpc": "2.0", "id": number, "method": "GetHandicap", "params": [number]} for number in numbers])
    print("In one batch:", " ".join(f"{reply['result']['return']:.2f}" for reply in club.receive()))
    club.close()


main()
