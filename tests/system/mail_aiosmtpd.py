"""SMTP servers on one port of several loopback addresses: mail_aiosmtpd.py <port> <folder> <address>=<mode>...

A mode is "open", or what the server offers to log in with before it takes a mail ("LOGIN,PLAIN"), or a step and the reply that it
refuses it with ("RCPT:452 4.3.1 Insufficient system storage"). What is taken lies in the folder when the client hears of it.
"""
import asyncio
import os
import sys

from aiosmtpd.smtp import SMTP, AuthResult, LoginPassword

LOGIN = LoginPassword(b"operator", b"open sesame")


class Handler:
    def __init__(self, address, folder, refusals):
        self.address, self.folder, self.refusals = address, folder, refusals

    async def handle_MAIL(self, server, session, envelope, sender, options):
        envelope.mail_from = sender
        return self.refusals.get("MAIL", "250 OK")

    async def handle_RCPT(self, server, session, envelope, recipient, options):
        envelope.rcpt_tos.append(recipient)
        return self.refusals.get("RCPT", "250 OK")

    async def handle_DATA(self, server, session, envelope):
        if "DATA" in self.refusals:
            return self.refusals["DATA"]
        trace = [f"Return-Path: <{envelope.mail_from}>", f"Received: by {self.address}"]
        trace += [f"Delivered-To: {recipient}" for recipient in envelope.rcpt_tos]
        mail = "\n".join(trace + [""]).encode() + envelope.original_content.replace(b"\r\n", b"\n")
        with open(os.path.join(self.folder, f"{len(os.listdir(self.folder)):04}"), "wb") as file:
            file.write(mail)
        return "250 OK"


class Server(SMTP):
    AuthLoginUsernameChallenge = "Username:"
    AuthLoginPasswordChallenge = "Password:"


def authenticate(server, session, envelope, mechanism, login):
    return AuthResult(success=login == LOGIN, handled=False)


def factory(address, folder, mode):
    step, _, reply = mode.partition(":")
    handler = Handler(address, folder, {step: reply} if reply else {})
    mechanisms = [] if reply or mode == "open" else mode.split(",")
    return lambda: Server(
        handler,
        hostname="localhost",
        auth_required=bool(mechanisms),
        auth_require_tls=not mechanisms,
        auth_exclude_mechanism={"LOGIN", "PLAIN"} - set(mechanisms),
        authenticator=authenticate,
    )


async def main(port, folder, *servers):
    for server in servers:
        address, _, mode = server.partition("=")
        await asyncio.get_running_loop().create_server(factory(address, folder, mode), address, int(port))
    await asyncio.Event().wait()


asyncio.run(main(*sys.argv[1:]))
