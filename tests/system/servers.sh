#!/bin/sh
# A real server in the folder where this starts, on loopback ports from <base> on: servers.sh <server> <base>, or
# servers.sh postfix <folder of dovecot>, or servers.sh mailbox <folder of postfix>. It has no right of root but for Postfix and its mailbox, and ends with the one who started it.
set -eu
server=$1 base=$2 home=$PWD
run="setpriv --pdeathsig KILL" user=$(id -un) group=$(id -gn)
if [ "$(id -u)" = 0 ] && [ "$server" != postfix ] && [ "$server" != mailbox ]; then
    user=nobody group=nogroup
    run="$run --reuid=$user --regid=$group --clear-groups"
fi
start() { if [ "$user" = nobody ]; then chown -R $user:$group .; fi && exec $run "$@"; }
new="-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -batch"
certify() { # <name> <its other names> <days>
    echo "$2" >names
    openssl req $new -subj /CN=localhost -keyout "$1.key" -out "$1.csr"
    openssl x509 -req -CA authority.pem -CAkey authority.key -CAcreateserial -in "$1.csr" -out "$1.pem" -extfile names -days "$3"
}
certify_all() { # <address>: certificates that are good, expired, of an unknown authority, of another name
    here=subjectAltName=DNS:localhost,IP:$1
    openssl req -x509 $new -subj "/CN=Korvane test authority" -keyout authority.key -out authority.pem
    openssl req -x509 $new -subj /CN=localhost -addext $here -keyout unknown.key -out unknown.pem
    certify good $here 2
    certify expired $here -1
    certify other subjectAltName=DNS:other.example 2
}

case $server in
nginx)
    certify_all 127.0.0.1
    echo "operator:{PLAIN}open sesame" >users
    printf '\211PNG\r\n\032\n\000\000\000\rIHDR' >picture
    serve() { echo "server { listen 127.0.0.1:$1${2:+ ssl; ssl_certificate $2.pem; ssl_certificate_key $2.key}; include pages; }"; }
    { serve "$base" && serve $((base + 1)) good && serve $((base + 2)) expired && serve $((base + 3)) unknown &&
        serve $((base + 4)) other && serve $((base + 20000)); } >servers
    cat >pages <<END
        location = /page { return 200 "Welcome to Korvane\n"; }
        location = /private { auth_basic private; auth_basic_user_file users; echo "Hi, \$remote_user"; }
        location = /moved { return 302 /moved-again; }
        location = /moved-again { return 301 https://localhost:$((base + 1))/page; }
        location = /loop { return 302 /loop; }
        location = /cookie { if (\$cookie_seen) { return 200 "Welcome back\n"; } add_header Set-Cookie seen=1; return 302 /cookie; }
        location = /empty { return 200 ""; }
        location = /late { echo_sleep 60; echo "Welcome at last"; }
        location = /picture { default_type image/png; alias picture; }
        location = /big { echo_duplicate 50000000 a; echo end; }
        location = /too-big { echo_duplicate 70000000 a; echo end; }
END
    cat >nginx.conf <<END
        load_module /usr/lib/nginx/modules/ngx_http_echo_module.so;
        daemon off; master_process off; pid nginx.pid; error_log output; events {}
        http {
            log_format answers "\$request_uri \$status"; access_log answers answers; default_type text/html;
            client_body_temp_path t; proxy_temp_path t; fastcgi_temp_path t; uwsgi_temp_path t; scgi_temp_path t; include servers;
        }
END
    start nginx -p "$home" -c nginx.conf -e output ;;
squid)
    printf '%s\n' "http_port 127.0.0.1:$base" "http_access allow all" "cache deny all" "pid_filename none" "pinger_enable off" \
        "visible_hostname localhost" "access_log stdio:$home/answers" "cache_log $home/output" "coredump_dir $home" >squid.conf
    start squid -N -n "korvane$base" -f "$home/squid.conf" ;;
vsftpd)
    printf '%s\n' listen=YES listen_address=127.0.0.1 "listen_port=$base" background=NO run_as_launching_user=YES \
        seccomp_sandbox=NO xferlog_enable=NO "secure_chroot_dir=$home" >vsftpd.conf
    start vsftpd "$home/vsftpd.conf" ;;
dovecot) # POP3, IMAP, SMTP for submission, and logins for Postfix
    chmod 711 .
    echo "operator:{PLAIN}open sesame" >users
    listen() { printf 'service %s-login {\n chroot =\n inet_listener %s {\n  port = %s\n }\n}\n' "$1" "$1" "$2"; }
    {
        printf '%s\n' "protocols = pop3 imap submission" "listen = 127.0.0.1" "hostname = localhost" "ssl = no" \
            "submission_relay_host = 127.0.0.1" "log_path = /dev/stderr" "base_dir = $home/base" "state_dir = $home/state" \
            "default_internal_user = $user" "default_internal_group = $group" "default_login_user = $user" \
            "auth_mechanisms = plain login cram-md5" "service anvil {" " chroot =" "}" \
            "passdb {" " driver = passwd-file" " args = $home/users" "}" \
            "service auth {" " unix_listener $home/auth {" "  mode = 0666" " }" "}"
        listen pop3 "$base" && listen imap $((base + 1)) && listen submission $((base + 2))
    } >dovecot.conf
    start dovecot -F -c "$home/dovecot.conf" ;;
mailbox) # a box that postfix in the folder <base> fills, by POP3 under TLS on 127.0.0.12:995
    chmod 711 .
    echo "operator:{PLAIN}open sesame" >users
    printf '%s\n' "protocols = pop3" "listen = 127.0.0.12" "ssl = required" "ssl_cert = <$base/good.pem" "ssl_key = <$base/good.key" \
        "log_path = /dev/stderr" "base_dir = $home/base" "state_dir = $home/state" "mail_location = maildir:$base/boxes/box" \
        "default_internal_user = nobody" "default_internal_group = nogroup" "default_login_user = nobody" \
        "passdb {" " driver = passwd-file" " args = $home/users" "}" "service anvil {" " chroot =" "}" \
        "userdb {" " driver = static" " args = uid=nobody gid=nogroup home=$home" "}" \
        "service pop3-login {" " chroot =" " inet_listener pop3 {" "  port = 0" " }" " inet_listener pop3s {" "  port = 995" " }" "}" \
        "first_valid_uid = 1" "last_valid_uid = 0" "first_valid_gid = 1" "last_valid_gid = 0" >dovecot.conf
    exec setpriv --pdeathsig KILL dovecot -F -c "$home/dovecot.conf" ;;
postfix) # on 127.0.0.12: it takes mail for person@elsewhere.example only after a login; with STARTTLS on 25 and 587, TLS on 465; with
    # certificates that are expired on 466 (TLS) and 588, of an unknown authority on 467, of another name on 468
    certify_all 127.0.0.12
    chmod 711 . && mkdir etc queue data && chown postfix data
    sed 's/^smtp  *inet/127.0.0.12:smtp inet/' /usr/share/postfix/master.cf.dist >etc/master.cf
    listen() { echo "127.0.0.12:$1 inet n - n - - smtpd -o smtpd_tls_wrappermode=$3 -o smtpd_tls_chain_files=$home/$2.key,$home/$2.pem"; }
    { listen 587 good no && listen 588 expired no && listen 465 good yes && listen 466 expired yes && listen 467 unknown yes &&
        listen 468 other yes; } >>etc/master.cf
    owner=static:$(id -u nobody)
    printf '%s\n' "compatibility_level = 3.6" "maillog_file = /dev/stdout" "myhostname = mail.korvane.example" "mydestination =" \
        "alias_maps =" "inet_protocols = ipv4" "inet_interfaces = loopback-only" "disable_dns_lookups = yes" "mynetworks =" \
        "local_header_rewrite_clients =" "smtpd_peername_lookup = no" "virtual_mailbox_domains = korvane.example" \
        "virtual_mailbox_maps = inline:{person@elsewhere.example=box/}" "virtual_mailbox_base = $home/boxes" \
        "virtual_uid_maps = $owner" "virtual_gid_maps = $owner" "default_transport = virtual" "smtpd_sasl_type = dovecot" \
        "smtpd_sasl_auth_enable = yes" "smtpd_sasl_path = $base/auth" "queue_directory = $home/queue" "data_directory = $home/data" \
        "smtpd_relay_restrictions = permit_sasl_authenticated, reject_unauth_destination" "smtpd_tls_security_level = may" \
        "smtpd_tls_chain_files = $home/good.key, $home/good.pem" >etc/main.cf
    mkdir boxes && chown nobody boxes
    postconf -c etc -F '*/*/chroot=n'
    postfix -c "$home/etc" check
    # It changes its user for a moment, after which it would outlive a test that was killed; so it has a time to end by itself.
    start /usr/lib/postfix/sbin/master -d -s -e 600 -c "$home/etc" ;;
esac
